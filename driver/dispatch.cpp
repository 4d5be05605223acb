#include "driver/dispatch.h"

#include "check/Func_Check.h"
#include "check/locks.h"
#include "data/Func_DealData.h"

namespace
{
const Protocol& headFrame()
{
    return PLC_driver.frameList.at(0);
}

bool completesWrite(const Protocol& frame)
{
    return frame.var.rmwStep == RMW_READ_STEP;
}

/// The verdict on the number of bytes received; LOCAL_GOOD says nothing yet about the bytes.
constexpr Outcome judgeLength(int expected, int received)
{
    if (received == 0)
        return expected == REPLY_NONE ? LOCAL_GOOD : LOCAL_MISSING;
    return received == expected || expected == REPLY_ANY ? LOCAL_GOOD : LOCAL_WRONG_LENGTH;
}

static_assert(REMOTE_CORRUPT - LOCAL_CORRUPT == REMOTE_GOOD - LOCAL_GOOD &&
                  REMOTE_MISSING - LOCAL_MISSING == REMOTE_GOOD - LOCAL_GOOD &&
                  REMOTE_WRONG_LENGTH - LOCAL_WRONG_LENGTH == REMOTE_GOOD - LOCAL_GOOD,
              "remote outcomes stand in the order of the local ones");

constexpr Outcome remoteOf(Outcome local)
{
    return static_cast<Outcome>(local + (REMOTE_GOOD - LOCAL_GOOD));
}

void storeWhole(QByteArray* reply)
{
    Locker lists(completesWrite(headFrame()) ? &PLC_driver.listMutex : nullptr);
    Locker storage(&PLC_driver.storageMutex);
    SaveToLocalDataErea(reply);
}

/// What the runtime's array holds beyond the first `length` bytes is no part of the reply.
void storeLocal(QByteArray* reply, int length)
{
    if (reply->size() == length)
        return storeWhole(reply);
    QByteArray frame = reply->left(length);
    storeWhole(&frame);
}

int completeRemoteWrite(const QByteArray& reply, int length)
{
    QByteArray frame = reply.left(length);
    Locker lists(&PLC_driver.listMutex);
    SaveToLocalDataErea(&frame);
    return GetDriverReturnValue(PLC_driver.comInfo->framesDone == 1 ? REMOTE_GOOD : LOCAL_GOOD);
}
} // namespace

int DealDataOfLocalArea(QByteArray* reply, int length)
{
    Outcome outcome = judgeLength(headFrame().replyLength, length);
    if (outcome == LOCAL_GOOD && length != 0) {
        const int check = CheckGetData(reply, length);
        if (check == REPLY_REFUSED)
            outcome = LOCAL_CORRUPT;
        else if (check == REPLY_DATA)
            storeLocal(reply, length);
    }
    return GetDriverReturnValue(outcome);
}

int DealDataOfRemoteArea(QByteArray* reply, int length)
{
    Outcome outcome = judgeLength(headFrame().replyLength, length);
    if (outcome == LOCAL_GOOD && length != 0) {
        if (CheckGetData(reply, length) == REPLY_REFUSED)
            outcome = LOCAL_CORRUPT;
        else if (completesWrite(headFrame()))
            return completeRemoteWrite(*reply, length);
    }
    return GetDriverReturnValue(remoteOf(outcome));
}

int GetDriverReturnValue(int outcome)
{
    if (outcome < 0 || outcome >= OUTCOME_COUNT)
        return RESULT_UNKNOWN;
    const ResultInfo& row = RESULTS[outcome];
    return row.error ? SwitchErrorReturn(row.code - 1) : row.code;
}

int SwitchErrorReturn(int errorBase)
{
    const int key = headFrame().var.hostKey;
    const bool own = key >= 0 && key < ERROR_GROUP_SIZE;
    return errorBase + 1 + (own ? key : 0);
}
