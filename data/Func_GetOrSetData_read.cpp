#include "check/Func_Check.h"
#include "check/guarded.h"
#include "check/locks.h"
#include "data/Func_GetOrSetData.h"
#include "data/image.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr int REFUSED_BYTES_PER_ELEMENT = 2;

int refuse(QByteArray& out, int count)
{
    const qint64 bytes = qint64{REFUSED_BYTES_PER_ELEMENT} * count;
    if (bytes > 0 && bytes <= MAX_IMAGE_BYTES)
        out = QByteArray(static_cast<int>(bytes), '\0');
    return 0;
}

void copyBits(char* out, const unsigned char* image, int firstBit, int count)
{
    for (int i = 0; i < count; ++i) {
        const int bit = firstBit + i;
        out[i] = static_cast<char>((image[bit / BITS_PER_BYTE] >> (bit % BITS_PER_BYTE)) & 1);
    }
}

/// Host reads get bytes in the space of words: the values, then as many zeros.
void copyValues(QByteArray& out, const QByteArray& image, const RegisterTypeInfo& info, int offset,
                int count)
{
    const int present = valueBytes(info, count);
    out = QByteArray(info.definition == DEF_BYTE ? BYTES_PER_WORD * present : present, '\0');
    if (info.definition == DEF_BIT)
        copyBits(out.data(), wireBytes(image), offset, count);
    else
        std::memcpy(out.data(), image.constData() + offset, static_cast<std::size_t>(present));
}

int readStore(int type, int address, int station, QByteArray& out, int count)
{
    const HostAccess access = hostAccess(type, address, count);
    if (address < 0 || !isWithinReach(access))
        return refuse(out, count);

    Locker lock(&PLC_driver.storageMutex);
    QByteArray& image = areaImage(station, getPlcReg(type));
    growImage(image, static_cast<int>(std::max<qint64>(access.end, 0)));
    if (const RegisterTypeInfo* info = findRegisterType(type))
        copyValues(out, image, *info, static_cast<int>(access.offset), count);
    return 1;
}
} // namespace

int GetRegisterData(int /*unused*/, int type, QString* addressText, int station, QByteArray* out,
                    int count)
{
    if (!out)
        return 0;
    out->clear();
    const int address = addressText ? PLCAddressChangeIntef(type, *addressText) : -1;
    return guarded(0, [=] { return readStore(type, address, station, *out, count); });
}
