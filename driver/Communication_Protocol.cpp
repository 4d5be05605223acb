#include "driver/Communication_Protocol.h"

// One file, in this order: unloading destroys the store before the state object that guards it.
Communication_Protocol PLC_driver;
QMap<int, QMap<int, QByteArray>> DataStorage;

void* LB = nullptr;
void* LW = nullptr;
void* RWI = nullptr;

void passRetValue(const RW_VAR& from, RW_VAR& to)
{
    to = from;
    to.data.clear();
}
