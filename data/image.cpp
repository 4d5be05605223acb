#include "data/image.h"

#include "check/locks.h"

#include <algorithm>
#include <cstring>

QByteArray& areaImage(int station, int area)
{
    return DataStorage[station][area];
}

const QByteArray* findImage(int station, int area)
{
    const QMap<int, QMap<int, QByteArray>>& store = DataStorage;
    const auto areas = store.constFind(station);
    if (areas == store.constEnd())
        return nullptr;
    const auto image = areas->constFind(area);
    return image == areas->constEnd() ? nullptr : &image.value();
}

HostAccess hostAccess(int type, int address, int count)
{
    constexpr qint64 widestElementBytes = 4;
    const qint64 offset = qint64{getPlcStorageAddress(type)} * address;
    return {offset, offset + widestElementBytes * count};
}

void growImage(QByteArray& image, int size)
{
    const int before = image.size();
    if (size <= before)
        return;
    image.resize(size);
    std::memset(image.data() + before, 0, static_cast<std::size_t>(size - before));
}

namespace
{
bool growsInPlace(int station, int area, int size)
{
    Locker lock(&PLC_driver.storageMutex);
    QByteArray& image = areaImage(station, area);
    if (!image.isDetached() || image.capacity() < size)
        return false;
    growImage(image, size);
    return true;
}
} // namespace

void lengthenImage(int station, int area, int size)
{
    if (growsInPlace(station, area, size))
        return;
    QByteArray longer; // gone after the lock, with what it has been exchanged for
    longer.reserve(size + size / 2);
    growImage(longer, size);
    Locker lock(&PLC_driver.storageMutex);
    QByteArray& image = areaImage(station, area);
    if (image.size() >= size)
        return;
    std::memcpy(longer.data(), image.constData(), static_cast<std::size_t>(image.size()));
    image.swap(longer);
}

unsigned char* writableSpan(QByteArray& image, ImageSpan span)
{
    const int end = static_cast<int>(span.start + span.bytes);
    if (image.size() < end)
        growImage(image, end);
    return reinterpret_cast<unsigned char*>(image.data()) + span.start;
}

void putBytes(unsigned char* target, const QByteArray& source, int from, int count)
{
    const int present = std::clamp(source.size() - from, 0, count);
    std::memcpy(target, source.constData() + from, static_cast<std::size_t>(present));
    if (present < count)
        std::memset(target + present, 0, static_cast<std::size_t>(count - present));
}

namespace
{
constexpr int FOUR_WORDS = 4 * BYTES_PER_WORD;

/// Swaps the bytes of four words at once, whatever the processor's own order: a fifth of a turn
/// that reads 120 words.
void swapFourWords(unsigned char* target, const unsigned char* wire)
{
    constexpr quint64 everySecond = 0x00FF00FF00FF00FF;
    quint64 words = 0;
    static_assert(sizeof words == FOUR_WORDS, "four words to a load");
    std::memcpy(&words, wire, sizeof words);
    words = ((words & everySecond) << BITS_PER_BYTE) | ((words >> BITS_PER_BYTE) & everySecond);
    std::memcpy(target, &words, sizeof words);
}
} // namespace

void putSwappedWords(unsigned char* target, const QByteArray& source, int from, int words)
{
    const unsigned char* wire = wireBytes(source) + from;
    const unsigned char* end = wire + BYTES_PER_WORD * std::ptrdiff_t{words};
    for (; end - wire >= FOUR_WORDS; wire += FOUR_WORDS, target += FOUR_WORDS)
        swapFourWords(target, wire);
    for (; wire != end; wire += BYTES_PER_WORD) {
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

QByteArray packedBits(const QByteArray& bitBytes, int count, unsigned mask)
{
    const int bits = std::clamp(bitBytes.size(), 0, std::max(count, 0));
    QByteArray packed((bits + BITS_PER_BYTE - 1) / BITS_PER_BYTE, '\0');
    char* out = packed.data();
    const unsigned char* in = wireBytes(bitBytes);
    for (int i = 0; i < bits; ++i) {
        const int bit = (in[i] & mask) != 0 ? 1 << (i % BITS_PER_BYTE) : 0;
        out[i / BITS_PER_BYTE] = static_cast<char>(out[i / BITS_PER_BYTE] | bit);
    }
    return packed;
}
