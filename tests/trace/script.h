/// Protocol traces: text files of named cases, each a run of lines that do or expect something.
#ifndef KP410_TESTS_SCRIPT_H
#define KP410_TESTS_SCRIPT_H

#include "support/bytes.h"

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

inline TraceLine traceLine(int number, const QString& line)
{
    const QStringList words = line.simplified().split(QLatin1Char(' '));
    const int sign = words.indexOf(text("="));
    return {number, words.mid(0, sign), sign < 0 ? QStringList() : words.mid(sign + 1), sign >= 0};
}

/// The cases of a file: "== name" opens one, "#" starts a comment line. Of a Markdown file only the
/// blocks fenced as "trace" count. No cases: no such file.
inline QList<TraceCase> traceCases(const QString& path)
{
    QList<TraceCase> cases;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return cases;
    bool inTrace = !path.endsWith(text(".md"));
    for (int number = 1; !file.atEnd(); ++number) {
        const QString line = QString::fromLatin1(file.readLine()).trimmed();
        if (line.startsWith(text("```")))
            inTrace = line == text("```trace");
        else if (!inTrace || line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        else if (line.startsWith(QLatin1String("== ")))
            cases << TraceCase{line.mid(3), QList<TraceLine>()};
        else if (!cases.isEmpty())
            cases.last().lines << traceLine(number, line);
    }
    return cases;
}

#endif
