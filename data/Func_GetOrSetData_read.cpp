#include "check/Func_Check.h"
#include "data/Func_GetOrSetData.h"
#include "data/image.h"

#include <QMutexLocker>

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

/// Bytes that a host read of `count` elements of `definition` returns.
qint64 resultBytes(int definition, qint64 count)
{
    switch (definition) {
    case DEF_BIT:
        return count;
    case DEF_BYTE:
    case DEF_WORD:
        return 2 * count;
    case DEF_DWORD:
        return (count + 1) / 2 * 4;
    default:
        return 0;
    }
}

void copyBits(char* out, const unsigned char* image, int firstBit, int count)
{
    for (int i = 0; i < count; ++i) {
        const int bit = firstBit + i;
        out[i] = static_cast<char>((image[bit / BITS_PER_BYTE] >> (bit % BITS_PER_BYTE)) & 1);
    }
}

void copyValues(QByteArray& out, const QByteArray& image, int definition, int offset, int count)
{
    const qint64 bytes = resultBytes(definition, count);
    if (count < 1 || bytes < 1)
        return;
    out.resize(static_cast<int>(bytes));
    if (definition == DEF_BIT) {
        copyBits(out.data(), wireBytes(image), offset, count);
        return;
    }
    const qint64 present = definition == DEF_BYTE ? count : bytes;
    std::memcpy(out.data(), image.constData() + offset, static_cast<std::size_t>(present));
    std::memset(out.data() + present, 0, static_cast<std::size_t>(bytes - present));
}
} // namespace

int GetRegisterData(int /*unused*/, int type, QString* addressText, int station, QByteArray* out,
                    int count)
{
    if (!out)
        return 0;
    out->clear();
    const int address = addressText ? PLCAddressChangeIntef(type, *addressText) : -1;
    const HostAccess access = hostAccess(type, address, count);
    if (address < 0 || !isWithinReach(access))
        return refuse(*out, count);

    QMutexLocker lock(&PLC_driver.storageMutex);
    QByteArray& image = areaImage(station, getPlcReg(type));
    growImage(image, static_cast<int>(std::max<qint64>(access.end, 0)));
    const int offset = static_cast<int>(access.offset);
    copyValues(*out, image, getRegisterTypeDefinition(type), offset, count);
    return 1;
}
