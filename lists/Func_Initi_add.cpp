#include "check/Func_Check.h"
#include "check/address.h"
#include "check/guarded.h"
#include "check/locks.h"
#include "check/records.h"
#include "lists/pieces.h"

namespace
{
/// Index of a pending write that `var` replaces, or -1. The head is left alone: it is the one that
/// may be on the wire.
int findReplaceable(const QList<RW_VAR>& writes, const RW_VAR& var)
{
    return findBehindHead(writes, [&](const RW_VAR& queued) { return sameTarget(queued, var); });
}

/// Puts `var` in the place of the pending write that it replaces, else at the end of a list that is
/// not full. Changes nothing when memory fails.
void putWrite(QList<RW_VAR>& writes, const RW_VAR& var)
{
    const int replaceable = findReplaceable(writes, var);
    if (replaceable >= 0)
        writes[replaceable] = var;
    else if (writes.size() < LIST_LIMIT)
        writes.append(var);
}

bool isQueued(const QList<RW_VAR>& reads, const RW_VAR& var)
{
    for (const RW_VAR& queued : reads) {
        if (sameKeys(queued, var) && sameTarget(queued, var))
            return true;
    }
    return false;
}

/// Queues the pieces of `var` that are not queued yet, all or none, and leaves `var` as the last
/// piece. A list that is full ends it: no later piece could be added.
void queuePieces(QList<RW_VAR>& reads, RW_VAR& var, const Pieces& pieces)
{
    Appending<RW_VAR> appending(reads);
    const int start = var.address;
    for (qint64 i = 0; i < pieces.count && reads.size() < LIST_LIMIT; ++i) {
        setPiece(var, pieces, start, i);
        if (!isQueued(reads, var))
            reads.append(var);
    }
    if (pieces.count > 0)
        setPiece(var, pieces, start, pieces.count - 1);
    appending.keep();
}

int addUnchanged(QList<RW_VAR>& list, const RW_VAR& var)
{
    list.append(var);
    return list.size();
}

/// A record that cannot be queued for want of memory keeps its units: it can be handed in again.
int addConverted(QList<RW_VAR>& reads, RW_VAR& var)
{
    const ComInfo* settings = PLC_driver.comInfo;
    const int address = settings ? StringAddressToInt(var.regType, var.addressText) : -1;
    if (address < 0)
        return 0;
    if (settings->stationPerVar == 0)
        var.station = settings->defaultStation;
    if (var.station == 0)
        return 0;
    RW_VAR native = var;
    native.address = address;
    native.rmwStep = RMW_NONE;
    native.auxParam = 0;
    updateRwVar(&native);
    // A negative count reads nothing, even where the conversion rounds it up to a unit.
    const Pieces pieces = cutLength(var.length >= 0 ? native.length : 0, settings->maxBlockLength);
    Locker lock(&PLC_driver.listMutex);
    queuePieces(reads, native, pieces);
    var = native;
    return reads.size();
}
} // namespace

int AddListReadVar(RW_VAR* var)
{
    if (!var)
        return 0;
    return guarded(0, [=] { return addUnchanged(PLC_driver.readList, *var); });
}

int AddListWriteVar(RW_VAR* var, int mode)
{
    if (!var)
        return 0;
    return guarded(0, [=] {
        Locker lock(&PLC_driver.listMutex);
        if (mode == ADD_UNCHANGED)
            return addUnchanged(PLC_driver.writeList, *var);
        putWrite(PLC_driver.writeList, *var);
        return PLC_driver.writeList.size();
    });
}

int AddListOnceReadVar(RW_VAR* var, int mode)
{
    if (!var)
        return 0;
    return guarded(0, [=] {
        if (mode != ADD_UNCHANGED)
            return addConverted(PLC_driver.onceReadList, *var);
        Locker lock(&PLC_driver.listMutex);
        return addUnchanged(PLC_driver.onceReadList, *var);
    });
}
