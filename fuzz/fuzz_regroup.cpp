/// Any list of variable descriptions, any block length. That the blocks are those of the model is
/// not all: what the rules are for is looked at by itself.
#include "model/model.h"
#include "support/driver.h"

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

typedef QPair<int, int> Group; // station and area

void check(bool holds, const char* what)
{
    if (!holds)
        qFatal("%s", what);
}

struct Units {
    qint64 from, to;
};

bool isCovered(Units wanted, const QList<Units>& blocks)
{
    for (bool moved = true; moved && wanted.from < wanted.to;) {
        moved = false;
        for (const Units& block : blocks) {
            if (block.from <= wanted.from && wanted.from < block.to) {
                wanted.from = block.to;
                moved = true;
            }
        }
    }
    return wanted.from >= wanted.to;
}

void checkBlocks(const QMap<Group, QList<Units>>& wanted)
{
    const int limit = settings.maxBlockLength;
    QMap<Group, QList<Units>> blocks;
    Group last(INT_MIN, INT_MIN);
    for (const RW_VAR& block : PLC_driver.readList) {
        const Group group(block.station, block.regType);
        const Units now = {block.address, qint64{block.address} + block.length};
        check(group >= last && wanted.contains(group), "sorted by station and area");
        check(block.length > 0 && (limit < 1 || block.length <= limit), "within the limit");
        check(block.hostKey == 0 && block.hostSubKey == -1 && block.rwFlag == RW_READ &&
                  block.rmwStep == 0 && block.nodeId == settings.ownNode && block.data.isEmpty(),
              "a cyclic read of nobody's keys");
        if (group == last) {
            // Only behind a piece that was full does a variable open a block of its own.
            const Units before = blocks[group].last();
            check(now.from >= before.to || (limit >= 1 && before.to - before.from == limit),
                  "no overlap but behind a full piece");
        }
        blocks[group].append(now);
        last = group;
        bool used = false; // a gap ends before a full piece does
        for (const Units& variable : wanted.value(group))
            used |= variable.from < now.to && now.from < variable.to;
        check(used, "nothing is read that nobody wants");
    }
    for (auto group = wanted.begin(); group != wanted.end(); ++group) {
        for (const Units& variable : *group)
            check(isCovered(variable, blocks.value(group.key())), "every variable is covered");
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    resetDriver();
    settings.maxBlockLength = BLOCKS[data[0] % std::size(BLOCKS)];
    settings.stationPerVar = data[1] % 8 == 7 ? 0 : 1;
    settings.defaultStation = data[1] / 8 % 4;
    settings.scanDone = 1;
    Model model;
    model.settings = settings;
    QMap<Group, QList<Units>> wanted;
    QList<VAR_DESC> vars;
    int blocks = 0;
    data += 2;
    for (size -= 2; size >= VARIABLE_BYTES; size -= VARIABLE_BYTES, data += VARIABLE_BYTES) {
        VAR_DESC desc = VAR_DESC();
        desc.regType =
            static_cast<unsigned char>(data[0] < 248 ? data[0] % 14 : TYPES[data[0] % 4]);
        desc.station = data[1] % 4;
        const int address = data[2] < 240 ? data[2] * (data[1] & 64 ? 256 : 1) + data[3] % 64
                                          : FAR[data[3] % std::size(FAR)];
        desc.length = data[4] < 240 ? data[4] % 32 * (data[5] % 64 == 63 ? 300 : 1)
                                    : FAR[data[5] % std::size(FAR)] / (data[5] & 16 ? 64 : 1);
        const bool dotted = (desc.regType <= MEMORY_BIT) != (data[1] >= 250);
        desc.addressText = dotted ? QString::fromLatin1("%1.%2").arg(address / 8).arg(address % 8)
                                  : QString::number(address);
        const int parsed = modelAddress(desc.regType, desc.addressText);
        RW_VAR var;
        var.regType = desc.regType;
        var.address = parsed;
        var.length = desc.length;
        toNative(var);
        const bool wanting = desc.length >= 0 && desc.length <= MAX_ELEMENTS;
        const int limit = settings.maxBlockLength;
        blocks += 1 + (wanting && limit >= 1 ? var.length / limit : 0);
        if (blocks > BLOCK_LIMIT)
            break;
        vars << desc;
        const int station = settings.stationPerVar != 0 ? desc.station : settings.defaultStation;
        const qint64 width = std::max(widthOf(desc.regType), 1);
        const int unit = var.regType == AREA_MEMORY || var.regType == AREA_SPECIAL_WORD ? 16 : 8;
        const qint64 scale = widthOf(desc.regType) == 0 ? 1 : unit;
        const qint64 first = width * parsed / scale;
        const qint64 bits = width * elementsIn(desc.regType, desc.length);
        const Units native = {first, (width * parsed + bits + scale - 1) / scale};
        if (wanting && parsed >= 0 && station != 0 && native.to <= INT_MAX)
            wanted[Group(station, areaOf(desc.regType))].append(native);
    }
    const int count = ReCreatReadVarList(&vars);
    check(count == PLC_driver.readList.size(), "the count");
    check(count == model.regroup(vars), "as many blocks as the model's");
    checkBlocks(wanted);
    for (int i = 0; i < count; ++i) {
        const RW_VAR &is = PLC_driver.readList.at(i), &expected = model.reads.at(i);
        check(is.address == expected.address && is.length == expected.length &&
                  is.regType == expected.regType && is.station == expected.station &&
                  is.label == expected.label && is.addressText == expected.addressText,
              "the model's blocks");
    }
    check(settings.scanDone == (vars.isEmpty() ? 1 : 0), "the scan starts anew");
    return 0;
}
