#include "encode/Func_Read.h"

#include "encode/queue.h"

void ReadRegister(const RW_VAR* var)
{
    ReadAnalog(var);
}

void ReadAnalog(const RW_VAR* var)
{
    queueFrame(readRequestOf(*var), replyOfRead(var->regType, var->length), *var);
    beginRequest(1);
}
