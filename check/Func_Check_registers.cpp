#include "check/Func_Check.h"

#include "check/arith.h"

int getPlcReg(int type)
{
    const RegisterTypeInfo* info = findRegisterType(type);
    return info ? info->area : type;
}

int getRegisterTypeDefinition(int type)
{
    const RegisterTypeInfo* info = findRegisterType(type);
    return info ? info->definition : int{DEF_UNKNOWN};
}

int getPlcStorageAddress(int type)
{
    const RegisterTypeInfo* info = findRegisterType(type);
    return info ? info->bytesPerElement : 1;
}

namespace
{
constexpr int bitsPerElement(const RegisterTypeInfo& info)
{
    return info.definition == DEF_BIT ? 1 : info.bytesPerElement * BITS_PER_BYTE;
}
} // namespace

int updateRwVar(RW_VAR* var)
{
    const RegisterTypeInfo* info = findRegisterType(var->regType);
    if (!info)
        return 0;
    const int elementBits = bitsPerElement(*info);
    const int unitBits = findArea(info->area)->bytesPerUnit * BITS_PER_BYTE;
    const int address = var->address;
    const qint64 length = var->length;
    if (elementBits < unitBits) {
        const int elementsPerUnit = unitBits / elementBits;
        const qint64 end = address % elementsPerUnit + length;
        var->address = address / elementsPerUnit;
        var->length = wrapToInt((end + elementsPerUnit - 1) / elementsPerUnit);
    } else {
        const int unitsPerElement = elementBits / unitBits;
        var->address = wrapMul(address, unitsPerElement);
        var->length = wrapToInt(elementsOf(*info, length) * unitsPerElement);
    }
    var->regType = info->area;
    return 0;
}
