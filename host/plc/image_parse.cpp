#include "image.h"

#include "image_area.h"

#include <QRegularExpression>

#include <algorithm>

namespace plc
{
namespace
{
enum Field { STATION, AREA, FIRST, EQUALS, VALUES };

struct Word {
    int column;
    QString text;
};

/// What was expected in which column; nothing expected when the line is good.
struct Complaint {
    int column = 0;
    QString expected = {};
};

QList<Word> wordsOf(const QString& line)
{
    static const QRegularExpression word(QStringLiteral("=|[^\\s=]+"));
    QList<Word> words;
    for (auto match = word.globalMatch(line); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        words.append({found.capturedStart() + 1, found.captured()});
    }
    return words;
}

/// Decimal, or hexadecimal after 0x.
bool parseNumber(const QString& text, int highest, int& value)
{
    static const QRegularExpression digits(QStringLiteral("\\A(0[xX][0-9A-Fa-f]+|[0-9]+)\\z"));
    const bool hex = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    bool isNumber = false;
    value = text.toInt(&isNumber, hex ? 16 : 10);
    return isNumber && value <= highest && digits.match(text).hasMatch();
}

const ImageArea* areaByName(const QString& name)
{
    const auto* const found =
        std::find_if(IMAGE_AREAS.begin(), IMAGE_AREAS.end(),
                     [&name](const ImageArea& area) { return name == QLatin1String(area.name); });
    return found == IMAGE_AREAS.end() ? nullptr : found;
}

QString areaNames()
{
    QStringList names;
    for (const ImageArea& area : IMAGE_AREAS)
        names << QLatin1String(area.name);
    return names.join(QStringLiteral(", "));
}

QString stationNames(const QList<int>& stations)
{
    QStringList names;
    for (const int station : stations)
        names << QString::number(station);
    return names.join(QStringLiteral(", "));
}

QString expectedValue(const ImageArea& area)
{
    if (area.highest == 1)
        return QStringLiteral("a bit, 0 or 1");
    return QStringLiteral("a word, 0 to %1 or in hexadecimal 0x0 to 0x%2")
        .arg(area.highest)
        .arg(area.highest, 0, 16);
}

Complaint parseValues(const QList<Word>& words, const ImageArea& area, ImageRun& run)
{
    for (const Word& word : words.mid(VALUES)) {
        int value = 0;
        if (run.first + run.values.size() == area.size)
            return {word.column, QStringLiteral("no more values, the area %1 ends at %2")
                                     .arg(QLatin1String(area.name))
                                     .arg(area.size - 1)};
        if (!parseNumber(word.text, area.highest, value))
            return {word.column, expectedValue(area)};
        run.values.append(static_cast<quint16>(value));
    }
    return {};
}

/// @param end the column after the line, where a missing word is
Complaint parseLine(const QList<Word>& words, int end, const QList<int>& stations, ImageRun& run)
{
    const auto at = [&words, end](int field) { return words.value(field, {end, {}}); };
    if (!parseNumber(at(STATION).text, MAX_STATION, run.station) || !stations.contains(run.station))
        return {at(STATION).column, QStringLiteral("a station, one of ") + stationNames(stations)};
    const ImageArea* area = areaByName(at(AREA).text);
    if (area == nullptr)
        return {at(AREA).column, QStringLiteral("an area, one of ") + areaNames()};
    run.area = area->area;
    if (!parseNumber(at(FIRST).text, area->size - 1, run.first))
        return {at(FIRST).column,
                QStringLiteral("the number of the first element, 0 to %1").arg(area->size - 1)};
    if (at(EQUALS).text != QLatin1String("="))
        return {at(EQUALS).column, QStringLiteral("=")};
    if (words.size() == VALUES)
        return {end, QStringLiteral("a value")};
    return parseValues(words, *area, run);
}
} // namespace

Image parseImage(const QString& name, const QString& text, const QList<int>& stations)
{
    Image image;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).section(QLatin1Char('#'), 0, 0);
        const QList<Word> words = wordsOf(line);
        if (words.isEmpty())
            continue;
        const int end = words.last().column + words.last().text.size() + 1;
        ImageRun run;
        const Complaint complaint = parseLine(words, end, stations, run);
        if (complaint.expected.isEmpty())
            image.runs.append(run);
        else
            image.errors << QStringLiteral("%1:%2:%3: expected %4")
                                .arg(name)
                                .arg(i + 1)
                                .arg(complaint.column)
                                .arg(complaint.expected);
    }
    return image;
}
} // namespace plc
