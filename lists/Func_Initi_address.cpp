#include "check/address.h"
#include "check/guarded.h"
#include "lists/Func_Initi.h"

int StringAddressToInt(int type, QString text)
{
    return elementAddress(type, text);
}

int PLCAddressChangeIntef(int type, QString text)
{
    constexpr int none = -1;
    return guarded(none, [&] { return elementAddress(type, text); });
}
