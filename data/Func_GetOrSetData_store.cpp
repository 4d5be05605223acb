#include "check/Func_Check.h"
#include "check/guarded.h"
#include "check/locks.h"
#include "data/Func_GetOrSetData.h"
#include "data/image.h"

namespace
{
constexpr unsigned ANY_BIT = 0xFF;

bool isBitRecord(const RegisterTypeInfo& info)
{
    return info.area == AREA_OUTPUT || info.definition == DEF_BIT;
}

ImageSpan spanOfRecord(const RW_VAR& var, const RegisterTypeInfo& info)
{
    const qint64 length = var.length;
    if (isBitRecord(info))
        return spanOfBits(var.address, length);
    if (info.definition == DEF_BYTE)
        return {var.address, length};
    // Words and double words alike are addressed and counted in words; a double word is never cut.
    return {qint64{BYTES_PER_WORD} * var.address, elementsOf(info, length) * info.bytesPerElement};
}
} // namespace

void WriteDataToLocal(const RW_VAR* var)
{
    const RegisterTypeInfo* info = findRegisterType(var->regType);
    if (!info || var->length < 1)
        return;
    const ImageSpan span = spanOfRecord(*var, *info);
    if (!fitsImage(span))
        return;
    const bool bitBytes = info->definition == DEF_BIT && info->area != AREA_OUTPUT;
    const QByteArray data = bitBytes ? packedBits(var->data, var->length, ANY_BIT) : var->data;
    Locker lock(&PLC_driver.storageMutex);
    unsigned char* target = writableSpan(areaImage(var->station, info->area), span);
    if (isBitRecord(*info))
        putPackedBits(target, var->address % BITS_PER_BYTE, data, var->length);
    else
        putBytes(target, data, 0, static_cast<int>(span.bytes));
}

void storeWords(int station, const RegisterTypeInfo& info, int address, const QByteArray& value,
                int count)
{
    const int bytes = valueBytes(info, count);
    if (bytes == 0)
        return;
    const qint64 start = qint64{info.bytesPerElement} * address;
    Locker lock(&PLC_driver.storageMutex);
    putBytes(writableSpan(areaImage(station, info.area), {start, bytes}), value, 0, bytes);
}

void showWritten(const RW_VAR& var)
{
    guarded([&var] { WriteDataToLocal(&var); });
}
