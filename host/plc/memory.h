// The five memory areas of one station, in the units that requests address: bits and words.
#ifndef PLC_MEMORY_H
#define PLC_MEMORY_H

#include <QBitArray>
#include <QByteArray>
#include <QVector>

namespace plc
{
// The sizes stay below what 16-bit addresses reach, so that there are illegal addresses to meet.
inline constexpr int INPUT_BITS = 4096;
inline constexpr int OUTPUT_BITS = 4096;
inline constexpr int MEMORY_WORDS = 16384;
inline constexpr int SPECIAL_BITS = 2048;
inline constexpr int SPECIAL_WORDS = 512;

struct Memory {
    QBitArray inputBits = QBitArray(INPUT_BITS);
    QBitArray outputBits = QBitArray(OUTPUT_BITS);
    QVector<quint16> memoryWords = QVector<quint16>(MEMORY_WORDS);
    QBitArray specialBits = QBitArray(SPECIAL_BITS);
    QVector<quint16> specialWords = QVector<quint16>(SPECIAL_WORDS);
};

/// The bit area or the word area of an AreaCode; null when the area is of the other kind.
QBitArray* bitArea(Memory& memory, int area);
QVector<quint16>* wordArea(Memory& memory, int area);

// Wire data: bits packed least significant first, words high byte first. The range must lie inside
// the area.
QByteArray packBits(const QBitArray& bits, int first, int count);
void unpackBits(QBitArray& bits, int first, int count, const QByteArray& packed);
QByteArray packWords(const QVector<quint16>& words, int first, int count);
void unpackWords(QVector<quint16>& words, int first, int count, const QByteArray& packed);
} // namespace plc

#endif
