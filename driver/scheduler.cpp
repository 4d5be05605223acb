#include "check/guarded.h"
#include "check/locks.h"
#include "driver/Communication_Protocol.h"
#include "driver/finish.h"
#include "encode/Func_Read.h"
#include "encode/Func_Remote.h"
#include "encode/Func_Write.h"

namespace
{
/// Writes, and one-shot reads, that may be started between two cyclic reads.
constexpr int BURST_LIMIT = 5;

void encode(const ComInfo& settings, int source, const RW_VAR& var)
{
    const bool remote = settings.remoteFraming != 0;
    if (source == SOURCE_WRITE)
        remote ? Remote_WriteVar(&var) : WriteRegister(&var);
    else
        remote ? Remote_ReadVar(&var) : ReadRegister(&var);
}

/// Moves entries of switched-off stations from the head of `list` to its end, at most once round.
/// @return true when the head's station is on
bool passOverOffStations(QList<RW_VAR>& list)
{
    for (int i = 0; i < list.size(); ++i) {
        if (!Ethernetcontains(list.at(0).station))
            return true;
        rotate(list);
    }
    return false;
}

/// Starts the next variable of a list. @return true when its head was to be served
bool startHead(const ComInfo& settings, int source, QList<RW_VAR>& list)
{
    PLC_driver.currentSource = source;
    if (!passOverOffStations(list))
        return false;
    encode(settings, source, list.at(0));
    return true;
}

/// Gives up a write or one-shot read that no frame can be built for: it would hold back all behind
/// it. No reply has judged it, so its result is none of theirs.
void giveUpHead(const ComInfo& settings, const QList<RW_VAR>& list)
{
    prepareToFinish();
    finishVariable(settings, GIVEN_UP, list.at(0).nodeId != settings.ownNode);
    PLC_driver.retVar.result = RESULT_UNKNOWN;
}

/// Starts the next write or one-shot read within the limit of its burst. One that memory fails
/// counts too, or it would hold back all others.
bool startQueued(const ComInfo& settings, int source, QList<RW_VAR>& list, int& burst)
{
    if (list.isEmpty() || burst >= BURST_LIMIT)
        return false;
    ++burst;
    const bool started = startHead(settings, source, list);
    if (started && PLC_driver.frameList.isEmpty())
        giveUpHead(settings, list);
    return started;
}

bool startCyclic(const ComInfo& settings)
{
    return !PLC_driver.readList.isEmpty() && startHead(settings, SOURCE_READ, PLC_driver.readList);
}

void startNext(ComInfo& settings)
{
    if (startQueued(settings, SOURCE_WRITE, PLC_driver.writeList, PLC_driver.writeBurst) ||
        startQueued(settings, SOURCE_ONCE, PLC_driver.onceReadList, PLC_driver.onceReadBurst))
        return;
    PLC_driver.writeBurst = 0;
    PLC_driver.onceReadBurst = 0;
    if (!startCyclic(settings))
        settings.scanDone = 1;
}

Protocol* headFrame()
{
    return PLC_driver.frameList.isEmpty() ? nullptr : &PLC_driver.frameList.first();
}

Protocol* nextFrame(ComInfo& settings)
{
    if (Protocol* pending = headFrame())
        return pending;
    Locker lock(&PLC_driver.listMutex);
    startNext(settings);
    return headFrame();
}
} // namespace

Protocol* ComCommunication()
{
    ComInfo* settings = PLC_driver.comInfo;
    Protocol* const none = nullptr;
    return settings ? guarded(none, [settings] { return nextFrame(*settings); }) : none;
}
