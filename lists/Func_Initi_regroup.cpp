#include "check/Func_Check.h"
#include "check/arith.h"
#include "check/guarded.h"
#include "check/locks.h"
#include "lists/Func_Initi.h"
#include "lists/pieces.h"

#include <algorithm>
#include <limits>

namespace
{
typedef QMap<int, QMap<int, QList<RW_VAR>>> Groups; // by station, then native type

qint64 endOf(const RW_VAR& var)
{
    return qint64{var.address} + var.length;
}

bool reaches(const RW_VAR& block, const RW_VAR& next, int maxLength)
{
    const bool adjoins = next.address <= endOf(block);
    const bool bridged = maxLength >= 1 && next.address <= qint64{block.address} + maxLength;
    return adjoins || bridged;
}

constexpr int LAST_ADDRESS = std::numeric_limits<int>::max();

/// True when an address stays what it is in native units. One that wraps round the end of the
/// addresses would merge with variables at their start.
bool convertsWithoutWrapping(int type, int address)
{
    const AreaInfo* area = findArea(getPlcReg(type));
    const qint64 unitsPerElement = getPlcStorageAddress(type) / (area ? area->bytesPerUnit : 1);
    return unitsPerElement * address <= LAST_ADDRESS;
}

RW_VAR recordOf(const VAR_DESC& desc, const ComInfo& settings, int address)
{
    RW_VAR var;
    var.hostSubKey = -1;
    var.remoteMode = settings.remoteFraming;
    var.nodeId = settings.ownNode;
    var.label = desc.label;
    var.addressText = desc.addressText;
    var.regType = desc.regType;
    var.address = address;
    var.station = settings.stationPerVar != 0 ? int{desc.station} : settings.defaultStation;
    var.length = desc.length;
    return var;
}

Groups groupsOf(const QList<VAR_DESC>& vars, const ComInfo& settings)
{
    Groups groups;
    for (const VAR_DESC& desc : vars) {
        const int address = StringAddressToInt(desc.regType, desc.addressText);
        if (address < 0 || !convertsWithoutWrapping(desc.regType, address) || desc.length < 0 ||
            desc.length > MAX_ELEMENTS)
            continue;
        RW_VAR var = recordOf(desc, settings, address);
        if (var.station == 0)
            continue;
        updateRwVar(&var);
        if (endOf(var) > LAST_ADDRESS)
            continue;
        groups[var.station][var.regType].append(var);
    }
    return groups;
}

void appendBlocks(const QList<VAR_DESC>& vars, const ComInfo& settings)
{
    Groups groups = groupsOf(vars, settings);
    for (QMap<int, QList<RW_VAR>>& areas : groups) {
        for (QList<RW_VAR>& group : areas) {
            Bubble_Sort(&group);
            BitVarReCreat(&group, settings.maxBlockLength);
        }
    }
}

/// Appends all pieces, or none and leaves `var` as it is.
void appendPieces(int length, int maxLength, RW_VAR& var, QList<RW_VAR>& out)
{
    if (length <= maxLength || maxLength < 1) {
        out.append(var);
        return;
    }
    if (length > MAX_ELEMENTS)
        return;
    const Pieces pieces = cutLength(length, maxLength);
    Appending<RW_VAR> appending(out);
    RW_VAR piece = var;
    for (qint64 i = 0; i < pieces.count; ++i) {
        setPiece(piece, pieces, var.address, i);
        out.append(piece);
    }
    var = piece;
    appending.keep();
}

bool startsBefore(const RW_VAR& a, const RW_VAR& b)
{
    return a.address < b.address;
}
} // namespace

void Bubble_Sort(QList<RW_VAR>* list)
{
    std::stable_sort(list->begin(), list->end(), startsBefore);
}

void addressAdd(RW_VAR& block, int maxLength, bool appendRest)
{
    QList<RW_VAR>& out = PLC_driver.readList;
    while (maxLength >= 1 && block.length >= maxLength) {
        out.append(block);
        out.last().length = maxLength;
        block.address += maxLength;
        block.length -= maxLength;
    }
    if (appendRest && block.length > 0)
        out.append(block);
}

void BitVarReCreat(const QList<RW_VAR>* group, int maxLength)
{
    if (group->isEmpty())
        return;
    RW_VAR block = group->at(0);
    addressAdd(block, maxLength, false);
    for (int i = 1; i < group->size(); ++i) {
        const RW_VAR& next = group->at(i);
        const qint64 merged = std::max(endOf(block), endOf(next)) - block.address;
        if (block.length == 0) {
            block = next;
        } else if (reaches(block, next, maxLength)) {
            block.length = clampToCount(merged);
        } else {
            addressAdd(block, maxLength, true);
            block = next;
        }
    }
    addressAdd(block, maxLength, true);
}

int ReCreatReadVarList(QList<VAR_DESC>* vars)
{
    if (!vars)
        return 0;
    ComInfo* settings = vars->isEmpty() ? nullptr : PLC_driver.comInfo;
    if (!settings && !vars->isEmpty())
        return 0;
    return guarded(0, [=] {
        Locker lock(&PLC_driver.listMutex);
        Refilling<RW_VAR> refilling(PLC_driver.readList);
        if (settings) {
            appendBlocks(*vars, *settings);
            PLC_driver.scanCount = 0;
            settings->scanDone = 0;
        }
        refilling.keep();
        return PLC_driver.readList.size();
    });
}

void WhetherGroup(int length, int maxLength, RW_VAR* var, QList<RW_VAR>* out)
{
    if (!var || !out || length < 0)
        return;
    guarded([=] { appendPieces(length, maxLength, *var, *out); });
}
