#include "check/Func_Check.h"
#include "check/address.h"
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
    out.clear();
    if (bytes > 0 && bytes <= MAX_IMAGE_BYTES)
        out = QByteArray(static_cast<int>(bytes), '\0');
    return 0;
}

/// Makes `out` an array of `bytes` bytes that no other shares. A screen hands in the array of its
/// last read, which is taken as it is: no memory is asked for, nothing is set to 0 first.
/// @return the first byte; all are to be set
char* roomIn(QByteArray& out, int bytes)
{
    if (out.size() != bytes)
        out = QByteArray(bytes, '\0');
    return out.data();
}

/// Copies the bits `shift` (0 to 7) and up of one byte, a byte to each.
char* copySomeBits(char* out, unsigned byte, int shift, int count)
{
    for (int i = 0; i < count; ++i)
        *out++ = static_cast<char>((byte >> (shift + i)) & 1);
    return out;
}

/// Four bits as bytes, least significant first.
constexpr int NIBBLE_BITS = 4;
constexpr char NIBBLES[][NIBBLE_BITS] = {{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {1, 1, 0, 0},
                                         {0, 0, 1, 0}, {1, 0, 1, 0}, {0, 1, 1, 0}, {1, 1, 1, 0},
                                         {0, 0, 0, 1}, {1, 0, 0, 1}, {0, 1, 0, 1}, {1, 1, 0, 1},
                                         {0, 0, 1, 1}, {1, 0, 1, 1}, {0, 1, 1, 1}, {1, 1, 1, 1}};

/// Whole bytes go by two look-ups each, a fifth of the steps that their bits take one by one.
void copyBits(char* out, const unsigned char* image, int firstBit, int count)
{
    const unsigned char* from = image + firstBit / BITS_PER_BYTE;
    const int shift = firstBit % BITS_PER_BYTE;
    if (shift > 0) {
        const int head = std::min(BITS_PER_BYTE - shift, count);
        out = copySomeBits(out, *from++, shift, head);
        count -= head;
    }
    for (; count >= BITS_PER_BYTE; count -= BITS_PER_BYTE, out += BITS_PER_BYTE, ++from) {
        std::memcpy(out, NIBBLES[*from & 0xF], NIBBLE_BITS);
        std::memcpy(out + NIBBLE_BITS, NIBBLES[*from >> NIBBLE_BITS], NIBBLE_BITS);
    }
    if (count > 0)
        copySomeBits(out, *from, 0, count);
}

/// Copies the first `present` bytes of a host read out of an image that has them.
void copyValues(char* out, const QByteArray& image, const RegisterTypeInfo& info, int offset,
                int present)
{
    if (present == 0) // then the image may end before `offset`
        return;
    if (info.definition == DEF_BIT)
        copyBits(out, wireBytes(image), offset, present);
    else
        std::memcpy(out, image.constData() + offset, static_cast<std::size_t>(present));
}

/// Readies `out` for `present` bytes; host reads get bytes in the space of words: the values, then
/// as many zeros.
char* readyFor(QByteArray& out, const RegisterTypeInfo& info, int present)
{
    const int zeros = info.definition == DEF_BYTE ? present : 0;
    char* values = roomIn(out, present + zeros);
    if (zeros > 0)
        std::memset(values + present, 0, static_cast<std::size_t>(zeros));
    return values;
}

int readStore(int type, int address, int station, QByteArray& out, int count)
{
    const HostAccess access = hostAccess(type, address, count);
    if (address < 0 || !isWithinReach(access))
        return refuse(out, count);

    const int end = static_cast<int>(std::max<qint64>(access.end, 0));
    const RegisterTypeInfo* info = findRegisterType(type);
    if (!info) { // an area without values
        out.clear();
        lengthenImage(station, type, end);
        return 1;
    }
    const int present = valueBytes(*info, count);
    char* values = readyFor(out, *info, present);
    const auto takeValues = [&] {
        Locker lock(&PLC_driver.storageMutex);
        const QByteArray* image = findImage(station, info->area);
        if (!image || image->size() < end)
            return false;
        copyValues(values, *image, *info, static_cast<int>(access.offset), present);
        return true;
    };
    while (!takeValues())
        lengthenImage(station, info->area, end);
    return 1;
}
} // namespace

int GetRegisterData(int /*unused*/, int type, QString* addressText, int station, QByteArray* out,
                    int count)
{
    if (!out)
        return 0;
    constexpr int failed = -1;
    const int address =
        addressText ? guarded(failed, [&] { return StringAddressToInt(type, *addressText); })
                    : failed;
    const int result =
        guarded(failed, [&] { return readStore(type, address, station, *out, count); });
    if (result != failed)
        return result;
    out->clear();
    return 0;
}
