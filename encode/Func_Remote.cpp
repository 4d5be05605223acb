#include "encode/Func_Remote.h"

#include "data/Func_GetOrSetData.h"
#include "encode/queue.h"

void Remote_ReadVar(const RW_VAR* var)
{
    queueFrame(remoteRequest(*var, QByteArray()), replyOfRead(var->regType, var->length), *var);
    beginRequest(1);
}

void Remote_WriteVar(const RW_VAR* var)
{
    queueFrame(remoteRequest(*var, var->data), var->station == 0 ? NO_REPLY : WRITE_REPLY, *var);
    beginRequest(1);
    showWritten(*var);
}
