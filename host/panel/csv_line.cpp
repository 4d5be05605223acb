#include "csv_line.h"

#include <algorithm>

namespace
{

constexpr QLatin1Char SEPARATOR(',');
constexpr QLatin1Char QUOTE('"');
constexpr QLatin1Char COMMENT('#');

bool endsField(const QString& line, int at)
{
    return at >= line.size() || line[at] == SEPARATOR || line[at] == COMMENT;
}

int skipBlanks(const QString& line, int at)
{
    while (at < line.size() && line[at].isSpace())
        ++at;
    return at;
}

int skipField(const QString& line, int at)
{
    while (!endsField(line, at))
        ++at;
    return at;
}

/// Takes the text from the opening quote at `*at` on, and leaves `*at` behind the field.
CsvField takeQuoted(const QString& line, int* at)
{
    CsvField field;
    field.column = *at + 1;
    int next = *at + 1;
    bool closed = false;
    while (next < line.size() && !closed) {
        const bool quote = line[next] == QUOTE;
        const bool doubled = quote && next + 1 < line.size() && line[next + 1] == QUOTE;
        closed = quote && !doubled;
        if (!closed)
            field.text += line[next];
        next += doubled ? 2 : 1;
    }
    field.text = field.text.trimmed();
    *at = skipField(line, skipBlanks(line, next));
    if (!closed)
        field.problem = QStringLiteral("a closing double quote");
    else if (!endsField(line, skipBlanks(line, next)))
        field.problem = QStringLiteral("a comma behind the closing double quote");
    if (!field.problem.isEmpty())
        field.text = line.mid(field.column - 1, *at - field.column + 1).trimmed();
    return field;
}

CsvField takeField(const QString& line, int* at)
{
    const int start = *at;
    const int first = skipBlanks(line, start);
    if (first < line.size() && line[first] == QUOTE) {
        *at = first;
        return takeQuoted(line, at);
    }
    *at = skipField(line, start);
    const QString text = line.mid(start, *at - start).trimmed();
    return {text, (text.isEmpty() ? start : first) + 1, QString()};
}

} // namespace

CsvLine splitCsvLine(const QString& line)
{
    CsvLine split;
    int at = 0;
    split.fields << takeField(line, &at);
    while (at < line.size() && line[at] == SEPARATOR) {
        ++at;
        split.fields << takeField(line, &at);
    }
    while (at > 0 && line[at - 1].isSpace())
        --at;
    split.endColumn = at + 1;
    return split;
}

bool isBlank(const CsvLine& line)
{
    return std::all_of(line.fields.begin(), line.fields.end(), [](const CsvField& field) {
        return field.text.isEmpty() && field.problem.isEmpty();
    });
}
