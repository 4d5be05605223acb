#include "check/arith.h"
#include "check/guarded.h"
#include "check/locks.h"
#include "driver/Communication_Protocol.h"
#include "driver/dispatch.h"
#include "driver/finish.h"
#include "encode/queue.h"

namespace
{
bool isGood(int code)
{
    return code == RESULT_GOOD || code == RESULT_GOOD_REMOTE;
}

/// The result code of a reply. One that there is no memory to store or to merge is as good as none.
int judge(QByteArray* reply, int length, bool remote)
{
    constexpr int unjudged = -1;
    const int code = guarded(unjudged, [=] {
        return remote ? DealDataOfRemoteArea(reply, length) : DealDataOfLocalArea(reply, length);
    });
    return code != unjudged ? code : GetDriverReturnValue(remote ? REMOTE_MISSING : LOCAL_MISSING);
}

/// Counts a completed variable towards the full pass over the cyclic list.
void countTowardsScan(ComInfo& settings)
{
    if (settings.scanDone != 0)
        return;
    PLC_driver.scanCount = wrapAdd(PLC_driver.scanCount, 1);
    if (PLC_driver.scanCount > PLC_driver.readList.size()) {
        PLC_driver.scanCount = 0;
        settings.scanDone = 1;
    }
}

/// @return the result code of the step
int takeGoodReply(ComInfo& settings, int code, bool remote)
{
    dropAnsweredFrame(); // the last that may throw: the runtime may hold a copy
    PLC_driver.lastFailed = false;
    settings.framesDone = wrapAdd(settings.framesDone, 1);
    // A frame that waits speaks against counters that the runtime has changed under way.
    if (settings.framesDone < settings.frameCount || !PLC_driver.frameList.isEmpty())
        return code;
    if (!remote)
        countTowardsScan(settings);
    finishVariable(settings, SERVED, remote);
    return code;
}

/// @return the result code of the step: RESULT_RETRY until the variable is given up
int takeFailedReply(ComInfo& settings, int code, bool remote)
{
    PLC_driver.lastFailed = true;
    PLC_driver.scanCount = 0;
    settings.scanDone = 0;
    settings.retryCount = wrapAdd(settings.retryCount, 1);
    if (settings.retryCount <= settings.retryLimit)
        return RESULT_RETRY;
    settings.retryCount = 0;
    PLC_driver.frameList.clear();
    finishVariable(settings, GIVEN_UP, remote);
    return code;
}
} // namespace

RW_VAR* DataCom(QByteArray* reply, int length)
{
    RW_VAR& served = PLC_driver.retVar;
    ComInfo* settings = PLC_driver.comInfo;
    served.result = RESULT_GOOD;
    if (PLC_driver.frameList.isEmpty() || !settings || (!reply && length != 0))
        return &served;

    const bool remote = PLC_driver.frameList.at(0).var.nodeId != settings->ownNode;
    const int code = judge(reply, length, remote);
    Locker lock(&PLC_driver.listMutex);
    const int result = guarded(int{RESULT_RETRY}, [=] {
        prepareToFinish();
        return isGood(code) ? takeGoodReply(*settings, code, remote)
                            : takeFailedReply(*settings, code, remote);
    });
    served.result = result;
    return &served;
}
