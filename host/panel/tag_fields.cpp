#include "tag_fields.h"

#include "tag_address.h"
#include "tag_place.h"

#include <QRegularExpression>

#include <algorithm>

namespace
{

enum Column { NAME, TYPE, ADDRESS, LENGTH, STATION, FORMAT, COLUMN_COUNT };

// Indexed by Column.
constexpr const char* COLUMN_NAMES[COLUMN_COUNT] = {"name",   "type",    "address",
                                                    "length", "station", "format"};

constexpr int DEFAULT_STATION = 1;
constexpr int HIGHEST_STATION = 247;  // the highest of the serial-line layout; 0 is the broadcast
constexpr int LONGEST_TAG = 64;       // elements; more than a line of the screen can show
constexpr int ANY_FORMATS_LENGTH = 2; // suits every format that suits the type
constexpr int FEWEST_HEADING_COLUMNS = 2;

void complain(TagLine* line, const CsvField& field, const QString& expected)
{
    if (!expected.isEmpty())
        line->problems << FieldProblem{field.column, expected, field.text};
}

void parseName(const CsvField& field, TagLine* line)
{
    static const QRegularExpression name(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_.-]*\\z"));
    if (name.match(field.text).hasMatch())
        line->tag.name = field.text;
    else
        complain(
            line, field,
            QStringLiteral("a name of letters, digits, '_', '.' and '-', a letter or '_' first"));
}

void parseStation(const CsvField& field, TagLine* line)
{
    line->tag.station = DEFAULT_STATION;
    if (!field.text.isEmpty() && !parseNumber(field.text, 1, HIGHEST_STATION, &line->tag.station))
        complain(line, field, QStringLiteral("a station, 1 to %1").arg(HIGHEST_STATION));
}

/// Leaves the type's own format in the tag where the field has none that suits it; without a type
/// only the name is checked.
void parseFormat(const CsvField& field, const Place& place, TagLine* line)
{
    Format format = place.type < 0 ? Format::Hex : defaultFormat(place.type);
    line->tag.format = format;
    if (field.text.isEmpty())
        return;
    if (!formatByName(field.text, &format)) {
        complain(line, field,
                 QStringLiteral("one of the formats ") + formatNames().join(QLatin1Char(' ')));
    } else if (place.type >= 0) {
        const QString problem = formatProblem(place.type, ANY_FORMATS_LENGTH, format);
        complain(line, field, problem);
        if (problem.isEmpty())
            line->tag.format = format;
    }
}

/// The end of the area: a length that is left out cannot be at fault, the address is then.
void checkEnd(const CsvField& length, const CsvField& address, const Place& place, TagLine* line)
{
    const int highest = highestLength(place.type, place.address);
    if (line->tag.length <= highest)
        return;
    if (!length.text.isEmpty())
        complain(line, length,
                 QStringLiteral("a length of at most %1, the area ends after %2 words")
                     .arg(highest)
                     .arg(AREA_WORDS));
    else
        complain(line, address,
                 QStringLiteral("room for %1 words, the area ends after %2")
                     .arg(line->tag.length)
                     .arg(AREA_WORDS));
}

void parseLength(const CsvField& length, const CsvField& address, const Place& place, TagLine* line)
{
    Tag& tag = line->tag;
    if (!length.text.isEmpty() && !parseNumber(length.text, 1, LONGEST_TAG, &tag.length)) {
        complain(line, length, QStringLiteral("a length of 1 to %1").arg(LONGEST_TAG));
        return;
    }
    if (place.type < 0)
        return;
    if (length.text.isEmpty())
        tag.length = defaultLength(place.type, tag.format);
    const QString problem = formatProblem(place.type, tag.length, tag.format);
    complain(line, length, problem);
    if (problem.isEmpty() && place.address >= 0)
        checkEnd(length, address, place, line);
}

void parseFields(const QVector<CsvField>& fields, TagLine* line)
{
    parseName(fields[NAME], line);
    Place place;
    line->problems += parsePlace(fields[TYPE], fields[ADDRESS], &place);
    parseFormat(fields[FORMAT], place, line);
    const CsvField& address = fields[fields[ADDRESS].text.isEmpty() ? TYPE : ADDRESS];
    parseLength(fields[LENGTH], address, place, line);
    parseStation(fields[STATION], line);
    if (fields.size() > COLUMN_COUNT)
        complain(line, fields[COLUMN_COUNT],
                 QStringLiteral("no more than %1 fields").arg(int{COLUMN_COUNT}));
    if (place.address >= 0) {
        line->tag.type = place.type;
        line->tag.address = place.address;
        line->tag.addressText = addressText(place.type, place.address);
    }
}

} // namespace

TagLine parseTagLine(const CsvLine& line)
{
    TagLine parsed;
    for (const CsvField& field : line.fields)
        complain(&parsed, field, field.problem);
    if (!parsed.problems.isEmpty())
        return parsed; // where the fields end is anybody's guess
    QVector<CsvField> fields = line.fields;
    while (fields.size() < COLUMN_COUNT)
        fields << CsvField{QString(), line.endColumn, QString()};
    parseFields(fields, &parsed);
    std::stable_sort(
        parsed.problems.begin(), parsed.problems.end(),
        [](const FieldProblem& a, const FieldProblem& b) { return a.column < b.column; });
    return parsed;
}

bool isHeading(const CsvLine& line)
{
    const int count = line.fields.size();
    if (count < FEWEST_HEADING_COLUMNS || count > COLUMN_COUNT)
        return false;
    for (int i = 0; i < count; ++i)
        if (line.fields[i].text.compare(QLatin1String(COLUMN_NAMES[i]), Qt::CaseInsensitive) != 0)
            return false;
    return true;
}
