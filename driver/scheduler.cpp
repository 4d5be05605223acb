#include "driver/Communication_Protocol.h"
#include "driver/finish.h"
#include "encode/Func_Read.h"
#include "encode/Func_Remote.h"
#include "encode/Func_Write.h"

#include <QMutexLocker>

namespace
{
/// Writes, and one-shot reads, that may be started between two cyclic reads.
constexpr int BURST_LIMIT = 5;

void encode(int source, const RW_VAR& var)
{
    const bool remote = PLC_driver.comInfo->remoteFraming != 0;
    if (source == SOURCE_WRITE)
        remote ? Remote_WriteVar(&var) : WriteRegister(&var);
    else
        remote ? Remote_ReadVar(&var) : ReadRegister(&var);
}

/// Moves entries of switched-off stations from the head of `list` to its end, at most once round.
/// @return true when the head's station is on
bool passOverOffStations(QList<RW_VAR>& list)
{
    for (int i = 0; i < list.size() && Ethernetcontains(list.at(0).station); ++i)
        rotate(list);
    return !Ethernetcontains(list.at(0).station);
}

/// Starts the next variable of a list. @return true when its head was to be served
bool startHead(int source, QList<RW_VAR>& list)
{
    PLC_driver.currentSource = source;
    if (!passOverOffStations(list))
        return false;
    encode(source, list.at(0));
    return true;
}

/// Starts the next write or one-shot read within the limit of its burst. One that no frame can be
/// built for would hold back all behind it: it is given up at once.
bool startQueued(int source, QList<RW_VAR>& list, int& burst)
{
    if (list.isEmpty() || burst >= BURST_LIMIT)
        return false;
    const bool started = startHead(source, list);
    ++burst;
    if (started && PLC_driver.frameList.isEmpty())
        finishVariable(true, list.at(0).nodeId != PLC_driver.comInfo->ownNode);
    return started;
}

bool startCyclic()
{
    return !PLC_driver.readList.isEmpty() && startHead(SOURCE_READ, PLC_driver.readList);
}

void startNext()
{
    if (startQueued(SOURCE_WRITE, PLC_driver.writeList, PLC_driver.writeBurst) ||
        startQueued(SOURCE_ONCE, PLC_driver.onceReadList, PLC_driver.onceReadBurst))
        return;
    if (!startCyclic())
        PLC_driver.comInfo->scanDone = 1;
    PLC_driver.writeBurst = 0;
    PLC_driver.onceReadBurst = 0;
}

Protocol* headFrame()
{
    return PLC_driver.frameList.isEmpty() ? nullptr : &PLC_driver.frameList.first();
}
} // namespace

Protocol* ComCommunication()
{
    if (Protocol* pending = headFrame())
        return pending;
    if (!PLC_driver.comInfo)
        return nullptr;
    QMutexLocker lock(&PLC_driver.listMutex);
    startNext();
    return headFrame();
}
