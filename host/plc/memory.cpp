#include "memory.h"

#include "wire.h"

#include <talmor_kp410_port.h>

namespace plc
{
QBitArray* bitArea(Memory& memory, int area)
{
    switch (area) {
    case AREA_INPUT:
        return &memory.inputBits;
    case AREA_OUTPUT:
        return &memory.outputBits;
    case AREA_SPECIAL_BIT:
        return &memory.specialBits;
    default:
        return nullptr;
    }
}

QVector<quint16>* wordArea(Memory& memory, int area)
{
    switch (area) {
    case AREA_MEMORY:
        return &memory.memoryWords;
    case AREA_SPECIAL_WORD:
        return &memory.specialWords;
    default:
        return nullptr;
    }
}

QByteArray packBits(const QBitArray& bits, int first, int count)
{
    QByteArray packed;
    for (int done = 0; done < count; done += 8) {
        int byte = 0;
        for (int bit = 0; bit < 8 && done + bit < count; ++bit)
            byte |= bits.testBit(first + done + bit) ? 1 << bit : 0;
        appendByte(packed, byte);
    }
    return packed;
}

void unpackBits(QBitArray& bits, int first, int count, const QByteArray& packed)
{
    for (int i = 0; i < count; ++i)
        bits.setBit(first + i, (byteAt(packed, i / 8) >> i % 8 & 1) != 0);
}

QByteArray packWords(const QVector<quint16>& words, int first, int count)
{
    QByteArray packed;
    for (int i = first; i < first + count; ++i)
        appendWord(packed, words.at(i));
    return packed;
}

void unpackWords(QVector<quint16>& words, int first, int count, const QByteArray& packed)
{
    for (int i = 0; i < count; ++i)
        words[first + i] = static_cast<quint16>(wordAt(packed, 2 * i));
}
} // namespace plc
