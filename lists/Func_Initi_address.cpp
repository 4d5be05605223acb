#include "check/address.h"
#include "check/guarded.h"

#include "talmor_kp410_port.h"

int PLCAddressChangeIntef(int type, QString text)
{
    constexpr int none = -1;
    return guarded(none, [&] { return StringAddressToInt(type, text); });
}
