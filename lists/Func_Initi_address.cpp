#include "check/Func_Check.h"
#include "check/arith.h"
#include "check/guarded.h"
#include "lists/Func_Initi.h"

int StringAddressToInt(int type, QString text)
{
    if (type != INPUT_BIT && type != OUTPUT_BIT && type != MEMORY_BIT)
        return text.toInt();
    const int point = text.indexOf(QLatin1Char('.'));
    if (point < 0 || text.indexOf(QLatin1Char('.'), point + 1) >= 0)
        return -1;
    const int byte = text.left(point).toInt();
    const int bit = text.mid(point + 1).toInt();
    return wrapAdd(wrapMul(byte, BITS_PER_BYTE), bit);
}

int PLCAddressChangeIntef(int type, QString text)
{
    constexpr int none = -1;
    return guarded(none, [&] { return StringAddressToInt(type, text); });
}
