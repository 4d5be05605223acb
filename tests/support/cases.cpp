#include "cases.h"

namespace
{
constexpr const char* ARROW = " -> ";
} // namespace

QString text(const QByteArray& utf8)
{
    return QString::fromUtf8(utf8);
}

Given parts(const QByteArray& list, char separator)
{
    Given trimmed;
    for (const QByteArray& part : list.split(separator))
        trimmed << part.trimmed();
    return trimmed;
}

CaseTest::CaseTest(const char* fileName, const QVector<Section>& sections)
    : m_fileName(fileName), m_sections(sections)
{
}

void CaseTest::cases_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<QString>("expected");
    QFile file(text(m_fileName));
    file.open(QIODevice::ReadOnly);
    int section = -1;
    QSet<int> filled;
    for (const QByteArray& line : parts(file.readAll(), '\n')) {
        const int arrow = line.lastIndexOf(ARROW);
        if (line.startsWith('[')) {
            section = m_sections.size() - 1;
            while (section >= 0 && line != QByteArray("[") + m_sections[section].name + ']')
                --section;
        } else if (!line.isEmpty() && !line.startsWith('#')) {
            if (section < 0 || arrow < 0)
                qFatal("no case of a known section: %s", line.constData());
            QTest::addRow("%s: %s", m_sections[section].name, line.constData())
                << section << line.left(arrow) << text(line.mid(arrow + int(strlen(ARROW))));
            filled << section;
        }
    }
    if (filled.size() != m_sections.size())
        qFatal("sections without cases in %s", m_fileName);
}

void CaseTest::cases()
{
    QFETCH(int, section);
    QFETCH(QByteArray, given);
    const Given all = parts(given, '|');
    if (all.size() != m_sections[section].count)
        qFatal("not %d parts: %s", m_sections[section].count, given.constData());
    QTEST(m_sections[section].outcome(all), "expected");
}

int runCases(int argc, char** argv, const char* fileName, const QVector<Section>& sections)
{
    CaseTest test(fileName, sections);
    return QTest::qExec(&test, argc, argv);
}
