/// Area images: the bytes of one area of one station, in the order that host reads expect.
#ifndef KP410_DATA_IMAGE_H
#define KP410_DATA_IMAGE_H

#include "check/Func_Check.h"

#include <limits>

/// A run of image bytes. 64-bit, because hostile addresses and counts reach far beyond an int.
struct ImageSpan {
    qint64 start;
    qint64 bytes;
};

constexpr bool fitsImage(ImageSpan span)
{
    return span.start >= 0 && span.bytes >= 0 && span.start + span.bytes <= MAX_IMAGE_BYTES;
}

/// Where a host read or write of `count` elements starts and ends: an image offset as
/// `getPlcStorageAddress` scales it, and the end with the widest element for every type.
struct HostAccess {
    qint64 offset;
    qint64 end;
};

HostAccess hostAccess(int type, int address, int count);

/// False for an access that is answered like a bad address.
constexpr bool isWithinReach(HostAccess access)
{
    return access.offset <= MAX_IMAGE_BYTES && access.end <= MAX_IMAGE_BYTES &&
           access.end >= std::numeric_limits<int>::min();
}

/// Bytes of `count` elements as values: one per bit or byte, 2 per word, 4 per double word. For
/// counts within reach.
constexpr int valueBytes(const RegisterTypeInfo& info, int count)
{
    return count < 1 ? 0 : static_cast<int>(elementsOf(info, count)) * info.bytesPerElement;
}

/// The bytes that `bits` bits from bit `firstBit` on touch.
constexpr ImageSpan spanOfBits(qint64 firstBit, qint64 bits)
{
    if (firstBit < 0)
        return {-1, 0};
    const qint64 start = firstBit / BITS_PER_BYTE;
    return {start, (firstBit + bits + BITS_PER_BYTE - 1) / BITS_PER_BYTE - start};
}

/// The image of `area` at `station`, created empty on first use. Hold `storageMutex`.
QByteArray& areaImage(int station, int area);

/// The image of `area` at `station`, or null before its first use. Hold `storageMutex`.
const QByteArray* findImage(int station, int area);

/// Lengthens the image of `area` at `station`, created on first use, to at least `size` bytes. The
/// memory is found and set to 0 before the lock is taken, which replies wait for; room for half as
/// much again keeps many small steps cheap. Takes `storageMutex`.
void lengthenImage(int station, int area, int size);

/// Lengthens `image` to at least `size` bytes; new bytes are 0.
void growImage(QByteArray& image, int size);

/// Grows `image` to hold `span`, which must fit, and returns its first byte.
unsigned char* writableSpan(QByteArray& image, ImageSpan span);

/// Copies `count` bytes of `source` from `from` on; bytes that `source` does not have are 0.
void putBytes(unsigned char* target, const QByteArray& source, int from, int count);

/// Copies `words` 16-bit words of `source` from byte `from` on, swapping the bytes of each.
void putSwappedWords(unsigned char* target, const QByteArray& source, int from, int words);

/// Puts `count` bits, packed in `source` least significant first, at bits `shift` (0 to 7) and up
/// of `target`. Bits that `source` does not have are 0.
void putPackedBits(unsigned char* target, int shift, const QByteArray& source, int count);

/// Packs the first `count` bytes of `bitBytes`, or as many as there are, least significant bit
/// first; a byte is 1 when it has a bit of `mask`.
QByteArray packedBits(const QByteArray& bitBytes, int count, unsigned mask);

#endif
