#include "check/Func_Check.h"
#include "check/records.h"
#include "lists/Func_Initi.h"
#include "lists/pieces.h"

#include <QMutexLocker>

namespace
{
/// Index of a pending write that `var` replaces, or -1. The head is left alone: it is the one that
/// may be on the wire.
int findReplaceable(const QList<RW_VAR>& writes, const RW_VAR& var)
{
    for (int i = 1; i < writes.size(); ++i) {
        if (sameTarget(writes.at(i), var))
            return i;
    }
    return -1;
}

bool isQueued(const QList<RW_VAR>& reads, const RW_VAR& var)
{
    for (const RW_VAR& queued : reads) {
        if (sameKeys(queued, var) && sameTarget(queued, var))
            return true;
    }
    return false;
}

/// Queues the pieces of `var` that are not queued yet and leaves `var` as the last piece. A list
/// that is full ends it: no later piece could be added.
void queuePieces(QList<RW_VAR>& reads, RW_VAR& var, const Pieces& pieces)
{
    const int start = var.address;
    for (qint64 i = 0; i < pieces.count && reads.size() < LIST_LIMIT; ++i) {
        setPiece(var, pieces, start, i);
        if (!isQueued(reads, var))
            reads.append(var);
    }
    if (pieces.count > 0)
        setPiece(var, pieces, start, pieces.count - 1);
}
} // namespace

int AddListReadVar(RW_VAR* var)
{
    if (!var)
        return 0;
    PLC_driver.readList.append(*var);
    return PLC_driver.readList.size();
}

int AddListWriteVar(RW_VAR* var, int mode)
{
    if (!var)
        return 0;
    QList<RW_VAR>& writes = PLC_driver.writeList;
    QMutexLocker lock(&PLC_driver.listMutex);
    const int replaceable = mode == ADD_UNCHANGED ? -1 : findReplaceable(writes, *var);
    if (replaceable >= 0)
        writes[replaceable] = *var;
    else if (mode == ADD_UNCHANGED || writes.size() < LIST_LIMIT)
        writes.append(*var);
    return writes.size();
}

int AddListOnceReadVar(RW_VAR* var, int mode)
{
    if (!var)
        return 0;
    QList<RW_VAR>& reads = PLC_driver.onceReadList;
    if (mode == ADD_UNCHANGED) {
        QMutexLocker lock(&PLC_driver.listMutex);
        reads.append(*var);
        return reads.size();
    }
    const ComInfo* settings = PLC_driver.comInfo;
    const int address = settings ? StringAddressToInt(var->regType, var->addressText) : -1;
    if (address < 0)
        return 0;
    if (settings->stationPerVar == 0)
        var->station = settings->defaultStation;
    if (var->station == 0)
        return 0;
    const bool isCount = var->length >= 0;
    var->address = address;
    var->rmwStep = RMW_NONE;
    var->auxParam = 0;
    updateRwVar(var);
    // A negative count reads nothing, even where the conversion rounds it up to a unit.
    const Pieces pieces = cutLength(isCount ? var->length : 0, settings->maxBlockLength);
    QMutexLocker lock(&PLC_driver.listMutex);
    queuePieces(reads, *var, pieces);
    return reads.size();
}
