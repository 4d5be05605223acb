#include "data/image.h"

#include <algorithm>
#include <cstring>

QByteArray& areaImage(int station, int area)
{
    return DataStorage[station][area];
}

void growImage(QByteArray& image, int size)
{
    const int before = image.size();
    if (size <= before)
        return;
    image.resize(size);
    std::memset(image.data() + before, 0, static_cast<std::size_t>(size - before));
}

unsigned char* writableSpan(QByteArray& image, ImageSpan span)
{
    growImage(image, static_cast<int>(span.start + span.bytes));
    return reinterpret_cast<unsigned char*>(image.data()) + span.start;
}

void putBytes(unsigned char* target, const QByteArray& source, int from, int count)
{
    const int present = std::clamp(source.size() - from, 0, count);
    std::memcpy(target, source.constData() + from, static_cast<std::size_t>(present));
    std::memset(target + present, 0, static_cast<std::size_t>(count - present));
}

void putSwappedWords(unsigned char* target, const QByteArray& source, int from, int words)
{
    const unsigned char* wire = wireBytes(source) + from;
    for (const unsigned char* end = wire + 2 * std::ptrdiff_t{words}; wire != end; wire += 2) {
        *target++ = wire[1];
        *target++ = wire[0];
    }
}

void putPackedBits(unsigned char* target, int shift, const QByteArray& source, int count)
{
    for (int done = 0; done < count; done += BITS_PER_BYTE, ++target) {
        const int index = done / BITS_PER_BYTE;
        const unsigned byte =
            index < source.size() ? static_cast<unsigned char>(source.at(index)) : 0U;
        const int bits = std::min(count - done, BITS_PER_BYTE);
        // Eight source bits can straddle two target bytes.
        const unsigned mask = ((1U << bits) - 1U) << shift;
        const unsigned value = (byte << shift) & mask;
        target[0] = static_cast<unsigned char>((target[0] & ~mask) | value);
        if (mask > 0xFF)
            target[1] = static_cast<unsigned char>((target[1] & ~(mask >> 8)) | (value >> 8));
    }
}

void putBitBytes(unsigned char* target, int shift, const QByteArray& source, int count)
{
    for (int i = 0; i < count; ++i) {
        const qint64 bit = qint64{shift} + i;
        const unsigned mask = 1U << (bit % BITS_PER_BYTE);
        unsigned char& byte = target[bit / BITS_PER_BYTE];
        const bool on = i < source.size() && source.at(i) != 0;
        byte = static_cast<unsigned char>(on ? byte | mask : byte & ~mask);
    }
}
