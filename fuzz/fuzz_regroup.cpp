/// Any list of variable descriptions, any block length. That the blocks are those of the model is
/// not all: what they are for is looked at by itself.
#include "model/session.h"

#include <algorithm>
#include <cstdint>

namespace
{
constexpr int VARIABLE_BYTES = 6;
constexpr int BLOCK_LIMIT = 1500; ///< of an input
constexpr int BLOCKS[] = {10, 1, 2, 3, 7, 60, 125, 2000, 0, -1, INT_MIN, INT_MAX};
constexpr int FAR[] = {-1,      65535, 65536,        INT_MAX / 4, INT_MAX / 2, INT_MAX - 3,
                       INT_MAX, 8191,  MAX_ELEMENTS, INT_MIN,     268435455,   536870911};
constexpr int TYPES[] = {14, 15, 128, 255};

VAR_DESC described(const std::uint8_t* data)
{
    VAR_DESC desc = VAR_DESC();
    desc.regType = static_cast<unsigned char>(data[0] < 248 ? data[0] % 14 : TYPES[data[0] % 4]);
    desc.station = data[1] % 4;
    const int address = data[2] < 240 ? data[2] * (data[1] & 64 ? 256 : 1) + data[3] % 64
                                      : FAR[data[3] % std::size(FAR)];
    desc.length = data[4] < 240 ? data[4] % 32 * (data[5] % 64 == 63 ? 300 : 1)
                                : FAR[data[5] % std::size(FAR)] / (data[5] & 16 ? 64 : 1);
    const bool dotted = (desc.regType <= MEMORY_BIT) != (data[1] >= 250);
    desc.addressText = dotted ? text("%1.%2", address / 8, address % 8) : QString::number(address);
    return desc;
}

qint64 unitBits(int area)
{
    return area == AREA_MEMORY || area == AREA_SPECIAL_WORD ? 16 : 8;
}

/// Blocks are sorted: one that starts behind all before it leaves a gap.
bool isCovered(const Target& wanted)
{
    qint64 from = wanted.first;
    for (const RW_VAR& block : PLC_driver.readList) {
        const qint64 unit = unitBits(block.regType);
        if (block.station == wanted.station && block.regType == wanted.area &&
            unit * block.address <= from)
            from = std::max(from, unit * (qint64{block.address} + block.length));
    }
    return from >= wanted.first + wanted.bits;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    Session session;
    settings.maxBlockLength = BLOCKS[data[0] % std::size(BLOCKS)];
    settings.stationPerVar = data[1] % 8 == 7 ? 0 : 1;
    settings.defaultStation = data[1] / 8 % 4;
    settings.scanDone = 1;
    session.settingsChanged();
    QList<VAR_DESC> vars;
    QList<Target> wanted;
    qint64 blocks = 0;
    for (std::size_t at = 2; at + VARIABLE_BYTES <= size; at += VARIABLE_BYTES) {
        const VAR_DESC desc = described(data + at);
        const int address = modelAddress(desc.regType, desc.addressText);
        const int station = settings.stationPerVar != 0 ? desc.station : settings.defaultStation;
        const Target target = hostTarget(desc.regType, address, station, desc.length);
        const qint64 unit = unitBits(target.area);
        const bool wanting = desc.length >= 0 && desc.length <= MAX_ELEMENTS;
        blocks += 1 + (wanting ? target.bits / unit / std::max(settings.maxBlockLength, 1) : 0);
        if (blocks > BLOCK_LIMIT)
            break;
        vars << desc;
        if (wanting && address >= 0 && station != 0 &&
            (target.first + target.bits + unit - 1) / unit <= INT_MAX)
            wanted << target;
    }
    const QString wrong = session.regroup(vars);
    if (!wrong.isEmpty())
        qFatal("%s", qPrintable(wrong));
    if (!std::all_of(wanted.begin(), wanted.end(), isCovered))
        qFatal("a variable is not covered");
    return 0;
}
