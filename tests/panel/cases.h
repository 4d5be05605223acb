// The cases of data-driven tests, kept as lines "GIVEN | GIVEN -> EXPECTED" of a text file under
// the test's name in brackets.
#pragma once

#include <QtTest>

constexpr const char* ARROW = " -> ";

inline QString text(const QByteArray& utf8)
{
    return QString::fromUtf8(utf8);
}

inline QList<QByteArray> parts(const QByteArray& list, char separator)
{
    QList<QByteArray> trimmed;
    for (const QByteArray& part : list.split(separator))
        trimmed << part.trimmed();
    return trimmed;
}

/// Adds a row for each case of the running test; there must be one.
inline void addCases()
{
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<QString>("expected");
    const QByteArray wanted = QByteArray("[") + QTest::currentTestFunction() + ']';
    bool ours = false, empty = true;
    QFile file(text(CASES));
    file.open(QIODevice::ReadOnly);
    for (const QByteArray& line : parts(file.readAll(), '\n')) {
        const int arrow = line.lastIndexOf(ARROW);
        if (line.startsWith('[')) {
            ours = line == wanted;
        } else if (ours && arrow >= 0 && !line.startsWith('#')) {
            QTest::newRow(line) << line.left(arrow) << text(line.mid(arrow + int(strlen(ARROW))));
            empty = false;
        } else if (ours && !line.isEmpty() && !line.startsWith('#')) {
            qFatal("no '%s' in: %s", ARROW, line.constData());
        }
    }
    if (empty)
        qFatal("no cases %s in " CASES, wanted.constData());
}

/// What the case gives, which must be as many parts as the test takes.
inline QList<QByteArray> given(int count, char separator = '|')
{
    QFETCH(QByteArray, given);
    const QList<QByteArray> all = parts(given, separator);
    if (all.size() != count)
        qFatal("not %d parts: %s", count, given.constData());
    return all;
}

inline void verifyContains(const QString& said)
{
    QFETCH(QString, expected);
    QVERIFY2(said.contains(expected), qPrintable(said));
}
