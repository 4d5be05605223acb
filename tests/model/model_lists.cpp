#include "model/model.h"

#include <algorithm>
#include <tuple>

namespace
{
int wrapped(qint64 value)
{
    return static_cast<int>(static_cast<quint32>(value));
}

/// Address and length in the area's units, before they wrap.
QPair<qint64, qint64> nativeUnits(int type, qint64 a, qint64 n)
{
    // clang-format off
    switch (type) {
    case INPUT_BIT: case OUTPUT_BIT: case SPECIAL_BIT: return {a / 8, (a % 8 + n + 7) / 8};
    case MEMORY_BIT: return {a / 16, (a % 16 + n + 15) / 16};
    case MEMORY_BYTE: return {a / 2, (a % 2 + n + 1) / 2};
    case INPUT_WORD: case OUTPUT_WORD: return {a * 2, n * 2};
    case INPUT_DWORD: case OUTPUT_DWORD: return {a * 4, (n + 1) / 2 * 4};
    case MEMORY_DWORD: return {a * 2, (n + 1) / 2 * 2};
    default: return {a, n};
    }
    // clang-format on
}
} // namespace

int modelAddress(int type, const QString& text)
{
    if (type < INPUT_BIT || type > MEMORY_BIT)
        return text.toInt();
    const QStringList parts = text.split(QLatin1Char('.'));
    return parts.size() == 2 ? wrapped(qint64{8} * parts.at(0).toInt() + parts.at(1).toInt()) : -1;
}

void toNative(RW_VAR& var)
{
    const QPair<qint64, qint64> units = nativeUnits(var.regType, var.address, var.length);
    var.address = wrapped(units.first);
    var.length = wrapped(units.second);
    var.regType = areaOf(var.regType);
}

/// What the driver makes of a variable of the runtime.
RW_VAR Model::record(int type, const QString& text, int station, int count) const
{
    RW_VAR var;
    var.remoteMode = settings.remoteFraming;
    var.nodeId = settings.ownNode;
    var.addressText = text;
    var.regType = type;
    var.address = modelAddress(type, text);
    var.station = settings.stationPerVar != 0 ? station : settings.defaultStation;
    var.length = count;
    return var;
}

int Model::addWrite(const RW_VAR& var, int mode)
{
    for (int i = 1; mode != ADD_UNCHANGED && i < writes.size(); ++i) {
        if (samePlace(writes.at(i), var)) {
            writes[i] = var;
            return writes.size();
        }
    }
    if (mode == ADD_UNCHANGED || writes.size() < LIST_LIMIT)
        writes.append(var);
    return writes.size();
}

/// Pieces of at most `limit`, at their own addresses; `var` becomes the last one.
QList<RW_VAR> Model::cut(int length, int limit, RW_VAR& var) const
{
    QList<RW_VAR> pieces;
    const qint64 start = var.address;
    const qint64 full = limit == 0 ? 0 : qint64{length} / limit;
    const qint64 count = full * limit == length ? full : full + 1;
    // No list takes more than the limit, so what lies between the first pieces and the last is
    // never seen.
    for (qint64 i = 0; length > 0 && i < count;
         i = i == LIST_LIMIT && i < count - 1 ? count - 1 : i + 1) {
        var.address = wrapped(start + i * limit);
        var.length = i < count - 1 ? limit : static_cast<int>(length - i * limit);
        pieces.append(var);
    }
    return pieces;
}

int Model::addOnce(RW_VAR& var, int mode)
{
    if (mode == ADD_UNCHANGED) {
        onceReads.append(var);
        return onceReads.size();
    }
    const int address = modelAddress(var.regType, var.addressText);
    if (!attached || address < 0)
        return 0;
    if (settings.stationPerVar == 0)
        var.station = settings.defaultStation;
    if (var.station == 0)
        return 0;
    const bool counts = var.length >= 0;
    var.address = address;
    var.rmwStep = var.auxParam = 0;
    toNative(var);
    for (const RW_VAR& piece : cut(counts ? var.length : 0, settings.maxBlockLength, var)) {
        bool known = onceReads.size() >= LIST_LIMIT;
        for (const RW_VAR& other : onceReads)
            known |= sameKeys(other, piece) && samePlace(other, piece);
        if (!known)
            onceReads.append(piece);
    }
    return onceReads.size();
}

void Model::emitBlocks(RW_VAR& block, bool rest)
{
    const int limit = settings.maxBlockLength;
    while (limit > 0 && block.length >= limit) {
        reads.append(block);
        reads.last().length = limit;
        block.address = wrapped(qint64{block.address} + limit);
        block.length -= limit;
    }
    if (rest && block.length > 0)
        reads.append(block);
}

int Model::regroup(const QList<VAR_DESC>& vars)
{
    if (!attached && !vars.isEmpty())
        return 0;
    reads.clear();
    if (vars.isEmpty())
        return 0;
    scanCount = settings.scanDone = 0;
    QList<RW_VAR> sorted;
    for (const VAR_DESC& desc : vars) {
        RW_VAR var = record(desc.regType, desc.addressText, desc.station, desc.length);
        var.hostSubKey = -1;
        var.label = desc.label;
        const QPair<qint64, qint64> units = nativeUnits(desc.regType, var.address, var.length);
        const bool wraps = units.first + units.second > 0x7FFFFFFF;
        if (var.address < 0 || var.station == 0 || desc.length < 0 || desc.length > MAX_ELEMENTS ||
            wraps)
            continue;
        toNative(var);
        sorted.append(var);
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const RW_VAR& a, const RW_VAR& b) {
        return std::tie(a.station, a.regType, a.address) <
               std::tie(b.station, b.regType, b.address);
    });
    RW_VAR block; // of station 0, which no variable has
    for (const RW_VAR& next : sorted) {
        const bool same = block.station == next.station && block.regType == next.regType;
        const qint64 end = qint64{block.address} + block.length;
        const qint64 reach = qint64{block.address} + std::max(settings.maxBlockLength, 0);
        if (same && block.length > 0 && next.address <= std::max(end, reach)) {
            const qint64 last = std::max(end, qint64{next.address} + next.length);
            block.length = static_cast<int>(last - block.address);
            continue;
        }
        emitBlocks(block, true);
        block = next;
        if (!same)
            emitBlocks(block, false);
    }
    emitBlocks(block, true);
    return reads.size();
}

void Model::station(int number, int enable)
{
    if (number < 0)
        off.clear();
    else if (enable == 0)
        off.insert(number);
    else if (enable == 1)
        off.remove(number);
}
