#include "image.h"

#include "image_area.h"

#include <algorithm>

namespace plc
{
namespace
{
constexpr const char* HEADING = "# station area first = values\n";

int element(Memory& memory, int area, int index)
{
    if (const QBitArray* bits = bitArea(memory, area))
        return bits->testBit(index) ? 1 : 0;
    return wordArea(memory, area)->at(index);
}

void setElement(Memory& memory, int area, int index, quint16 value)
{
    if (QBitArray* bits = bitArea(memory, area))
        bits->setBit(index, value != 0);
    else
        (*wordArea(memory, area))[index] = value;
}

/// One line, empty when all of the row is 0.
QString rowText(Memory& memory, int station, const ImageArea& area, int row)
{
    int first = row;
    int end = std::min(row + area.perRow, area.size);
    while (first < end && element(memory, area.area, first) == 0)
        ++first;
    while (end > first && element(memory, area.area, end - 1) == 0)
        --end;
    if (first == end)
        return {};
    QString line =
        QStringLiteral("%1 %2 %3 =").arg(station).arg(QLatin1String(area.name)).arg(first);
    for (int i = first; i < end; ++i)
        line += QLatin1Char(' ') + QString::number(element(memory, area.area, i));
    return line + QLatin1Char('\n');
}
} // namespace

void applyImage(const Image& image, Controller& controller)
{
    for (const ImageRun& run : image.runs)
        for (int i = 0; i < run.values.size(); ++i)
            setElement(controller.stations[run.station].memory, run.area, run.first + i,
                       run.values.at(i));
}

QString imageText(const Controller& controller)
{
    QString text = QLatin1String(HEADING);
    for (auto it = controller.stations.begin(); it != controller.stations.end(); ++it) {
        Memory memory = it->memory;
        for (const ImageArea& area : IMAGE_AREAS)
            for (int row = 0; row < area.size; row += area.perRow)
                text += rowText(memory, it.key(), area, row);
    }
    return text;
}
} // namespace plc
