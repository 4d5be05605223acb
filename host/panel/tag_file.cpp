#include "tag_file.h"

#include "tag_fields.h"

#include <QFile>
#include <QHash>

namespace
{

constexpr qint64 LARGEST_FILE = 1024 * 1024;
constexpr int LONGEST_QUOTE = 40; // characters of a wrong field that a complaint repeats

QString quoted(const QString& found)
{
    QString shown = found.left(LONGEST_QUOTE);
    for (QChar& c : shown)
        if (!c.isPrint())
            c = QLatin1Char('?');
    return found.size() > LONGEST_QUOTE ? shown + QStringLiteral("...") : shown;
}

QString placed(const QString& fileName, int lineNumber)
{
    return QStringLiteral("%1:%2").arg(fileName).arg(lineNumber);
}

/// A name that was there before is wrong, whatever else was wrong with its line.
void checkName(const CsvField& field, const QString& firstPlace, TagLine* line)
{
    if (!firstPlace.isEmpty())
        line->problems.prepend(
            {field.column, QStringLiteral("a name other than that in ") + firstPlace, field.text});
}

} // namespace

TagFile parseTags(const QString& fileName, const QString& text)
{
    TagFile file;
    QHash<QString, QString> places; // of the names met so far
    bool first = true;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const CsvLine fields = splitCsvLine(lines[i]);
        if (isBlank(fields))
            continue;
        const bool heading = first && isHeading(fields);
        first = false;
        if (heading)
            continue;
        TagLine line = parseTagLine(fields);
        const QString place = placed(fileName, i + 1);
        checkName(fields.fields[0], places.value(line.tag.name), &line);
        if (!line.tag.name.isEmpty() && !places.contains(line.tag.name))
            places.insert(line.tag.name, place);
        if (line.problems.isEmpty())
            file.tags << line.tag;
        for (const FieldProblem& problem : line.problems)
            file.errors << QStringLiteral("%1:%2: expected %3, not '%4'")
                               .arg(place)
                               .arg(problem.column)
                               .arg(problem.expected, quoted(problem.found));
    }
    return file;
}

TagFile readTagFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, {QStringLiteral("%1: %2").arg(fileName, file.errorString())}};
    const QByteArray text = file.read(LARGEST_FILE);
    if (!file.atEnd())
        return {{},
                {QStringLiteral("%1: expected at most %2 bytes").arg(fileName).arg(LARGEST_FILE)}};
    TagFile tags = parseTags(fileName, QString::fromUtf8(text)); // which drops a byte-order mark
    if (tags.tags.isEmpty() && tags.errors.isEmpty())
        tags.errors << QStringLiteral("%1: no tags").arg(fileName);
    return tags;
}

int tagByName(const QVector<Tag>& tags, const QString& name)
{
    for (int i = 0; i < tags.size(); ++i)
        if (tags[i].name == name)
            return i;
    return -1;
}
