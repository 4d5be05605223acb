#include "tag_file.h"

#include <QFile>
#include <QRegularExpression>

namespace
{

enum Column { NAME, TYPE, ADDRESS, LENGTH, STATION, FORMAT, COLUMN_COUNT };

constexpr int HIGHEST_STATION = 247; // the highest of the serial-line layout; 0 is the broadcast
constexpr int LONGEST_TAG = 64;      // elements; more than a line of the screen can show
constexpr int HIGHEST_ADDRESS = 65536 * 16 - 1; // the last bit of the largest area
constexpr int BITS_PER_BYTE = 8;
constexpr qint64 LARGEST_FILE = 1024 * 1024;

int typeByName(const QString& name)
{
    for (int type = 0; type < REGISTER_TYPE_COUNT; ++type)
        if (name == QLatin1String(REGISTER_TYPES[type].name))
            return type;
    return -1;
}

QString typeNames()
{
    QStringList names;
    for (const RegisterTypeInfo& type : REGISTER_TYPES)
        names << QLatin1String(type.name);
    return names.join(QLatin1Char(' '));
}

bool inRange(const QString& text, int lowest, int highest, int* value)
{
    bool good = false;
    *value = text.toInt(&good);
    return good && *value >= lowest && *value <= highest;
}

/// Bits of the input, output and memory area are written "byte.bit", all else is plain decimal.
QString parseAddress(Tag* tag)
{
    const bool split = tag->type == INPUT_BIT || tag->type == OUTPUT_BIT || tag->type == MEMORY_BIT;
    if (!split)
        return inRange(tag->addressText, 0, HIGHEST_ADDRESS, &tag->address)
                   ? QString()
                   : QStringLiteral("a decimal address, 0 to %1").arg(HIGHEST_ADDRESS);
    const QStringList parts = tag->addressText.split(QLatin1Char('.'));
    int byte = 0, bit = 0;
    if (parts.size() != 2 || !inRange(parts[0], 0, HIGHEST_ADDRESS / BITS_PER_BYTE, &byte) ||
        !inRange(parts[1], 0, BITS_PER_BYTE - 1, &bit))
        return QStringLiteral("an address written byte.bit, the bit 0 to 7");
    tag->address = byte * BITS_PER_BYTE + bit;
    return QString();
}

QString parseFields(const QStringList& fields, Tag* tag)
{
    static const QRegularExpression name(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_.-]*\\z"));
    if (!name.match(fields[NAME]).hasMatch())
        return QStringLiteral("a name of letters, digits, '_', '.' and '-', a letter first");
    tag->name = fields[NAME];
    tag->type = typeByName(fields[TYPE]);
    if (tag->type < 0)
        return QStringLiteral("one of the types ") + typeNames();
    tag->addressText = fields[ADDRESS];
    const QString address = parseAddress(tag);
    if (!address.isEmpty())
        return address;
    if (!inRange(fields[LENGTH], 1, LONGEST_TAG, &tag->length))
        return QStringLiteral("a length of 1 to %1").arg(LONGEST_TAG);
    if (!inRange(fields[STATION], 1, HIGHEST_STATION, &tag->station))
        return QStringLiteral("a station, 1 to %1").arg(HIGHEST_STATION);
    tag->format = defaultFormat(tag->type);
    if (!fields[FORMAT].isEmpty() && !formatByName(fields[FORMAT], &tag->format))
        return QStringLiteral("one of the formats ") + formatNames().join(QLatin1Char(' '));
    return formatProblem(tag->type, tag->length, tag->format);
}

QString parseLine(const QString& line, const QVector<Tag>& before, Tag* tag)
{
    QStringList fields = line.split(QLatin1Char(','));
    for (QString& field : fields)
        field = field.trimmed();
    if (fields.size() != COLUMN_COUNT)
        return QStringLiteral("%1 fields: name,type,address,length,station,format, not %2")
            .arg(int(COLUMN_COUNT))
            .arg(fields.size());
    const QString problem = parseFields(fields, tag);
    if (problem.isEmpty() && tagByName(before, tag->name) >= 0)
        return QStringLiteral("a new name, '%1' is taken").arg(tag->name);
    return problem;
}

} // namespace

TagFile parseTags(const QString& fileName, const QString& text)
{
    TagFile file;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].section(QLatin1Char('#'), 0, 0).trimmed();
        if (line.isEmpty())
            continue;
        Tag tag;
        const QString expected = parseLine(line, file.tags, &tag);
        if (expected.isEmpty())
            file.tags << tag;
        else
            file.errors
                << QStringLiteral("%1:%2: expected %3").arg(fileName).arg(i + 1).arg(expected);
    }
    return file;
}

TagFile readTagFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, {QStringLiteral("%1: %2").arg(fileName, file.errorString())}};
    TagFile tags = parseTags(fileName, QString::fromUtf8(file.read(LARGEST_FILE)));
    if (!file.atEnd())
        tags.errors << QStringLiteral("%1: longer than %2 bytes").arg(fileName).arg(LARGEST_FILE);
    else if (tags.tags.isEmpty() && tags.errors.isEmpty())
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
