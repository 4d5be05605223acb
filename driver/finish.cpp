#include "driver/finish.h"

#include "check/guarded.h"
#include "check/records.h"
#include "driver/Communication_Protocol.h"

namespace
{
/// The list that finished variables leave, or null for the cyclic list and before the first turn.
QList<RW_VAR>* queueOf(int source)
{
    switch (source) {
    case SOURCE_WRITE:
        return &PLC_driver.writeList;
    case SOURCE_ONCE:
        return &PLC_driver.onceReadList;
    default:
        return nullptr;
    }
}

bool headHasDuplicate(const QList<RW_VAR>& queue)
{
    const RW_VAR& head = queue.at(0);
    return findBehindHead(queue, [&](const RW_VAR& later) { return sameKeys(later, head); }) > 0;
}

void reportCompletion(const ComInfo& settings, const QList<RW_VAR>& queue, bool failed)
{
    // A later entry with the same keys will report the success of them all.
    if (!PLC_driver.finishCallback || (!failed && headHasDuplicate(queue)))
        return;
    const RW_VAR& head = queue.at(0);
    const int state = failed ? FINISH_FAILED : FINISH_DONE;
    // What ends is not to be held up, and told once more, by a callback that runs out of memory.
    guarded([&] {
        PLC_driver.finishCallback(settings.hostCookie, head.hostKey, head.hostSubKey, state);
    });
}

void reportFailure()
{
    QList<RW_VAR> none;
    if (PLC_driver.failCallback)
        guarded([&none] { PLC_driver.failCallback(&none, PLC_driver.retVar.hostKey, 1); });
}

void purgeGroup(QList<RW_VAR>& queue, const RW_VAR& failed, bool anyStation)
{
    for (int i = 0; i < queue.size();) {
        const RW_VAR& entry = queue.at(i);
        if (sameKeys(entry, failed) && (anyStation || entry.station == failed.station))
            queue.removeAt(i);
        else
            ++i;
    }
}
} // namespace

void prepareToFinish()
{
    QList<RW_VAR>* queue = queueOf(PLC_driver.currentSource);
    QList<RW_VAR>& list = queue ? *queue : PLC_driver.readList;
    if (!list.isEmpty())
        list.detach();
}

void finishVariable(const ComInfo& settings, Ending ending, bool remote)
{
    const bool failed = ending == GIVEN_UP;
    const int source = PLC_driver.currentSource;
    QList<RW_VAR>* queue = queueOf(source);
    if (queue && !queue->isEmpty()) {
        if (source == SOURCE_WRITE || !remote)
            reportCompletion(settings, *queue, failed);
        passRetValue(queue->at(0), PLC_driver.retVar);
        queue->removeFirst();
    } else if (source == SOURCE_READ && !PLC_driver.readList.isEmpty()) {
        passRetValue(PLC_driver.readList.at(0), PLC_driver.retVar);
        rotate(PLC_driver.readList);
    }
    if (!failed)
        return;
    reportFailure();
    if (queue)
        purgeGroup(*queue, PLC_driver.retVar, settings.stationPerVar == 0);
}
