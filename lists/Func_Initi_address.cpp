#include "check/Func_Check.h"
#include "check/arith.h"
#include "lists/Func_Initi.h"

#include <QStringList>

int StringAddressToInt(int type, QString text)
{
    if (type != INPUT_BIT && type != OUTPUT_BIT && type != MEMORY_BIT)
        return text.toInt();
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() != 2)
        return -1;
    return wrapAdd(wrapMul(parts.at(0).toInt(), BITS_PER_BYTE), parts.at(1).toInt());
}

int PLCAddressChangeIntef(int type, QString text)
{
    return StringAddressToInt(type, text);
}
