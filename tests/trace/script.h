/// Protocol traces: text files of named cases, each a run of lines that do or expect something.
#ifndef KP410_TESTS_SCRIPT_H
#define KP410_TESTS_SCRIPT_H

#include <QFile>
#include <QList>
#include <QStringList>

struct TraceLine {
    int number;
    QStringList words;    ///< before the "="
    QStringList expected; ///< behind it
    bool expects;         ///< there is an "="
};

struct TraceCase {
    QString name;
    QList<TraceLine> lines;
};

inline TraceLine traceLine(int number, const QString& text)
{
    TraceLine line = {number, QStringList(), QStringList(), false};
    for (const QString& word : text.simplified().split(QLatin1Char(' '))) {
        if (word == QLatin1String("="))
            line.expects = true;
        else
            (line.expects ? line.expected : line.words) << word;
    }
    return line;
}

/// The cases of a file: "== name" opens one, "#" starts a comment line. No cases: no such file.
inline QList<TraceCase> traceCases(const QString& path)
{
    QList<TraceCase> cases;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return cases;
    int number = 0;
    while (!file.atEnd()) {
        const QString text = QString::fromLatin1(file.readLine()).trimmed();
        ++number;
        if (text.isEmpty() || text.startsWith(QLatin1Char('#')))
            continue;
        if (text.startsWith(QLatin1String("== ")))
            cases << TraceCase{text.mid(3), QList<TraceLine>()};
        else if (!cases.isEmpty())
            cases.last().lines << traceLine(number, text);
    }
    return cases;
}

#endif
