#include "data/write_pieces.h"

#include "check/arith.h"

#include <algorithm>
#include <limits>

namespace
{
/// How a type's writes are addressed and counted once they are cut: in bits, single elements or
/// words.
struct WriteRule {
    int unitsPerElement;  ///< per element address of the runtime
    int unitsPerTwoBytes; ///< of the normalised value: 16 bits, 2 elements or 1 word
    int pieceMultiple;    ///< a piece is a multiple of so many bytes; 0: one byte to a piece
};

constexpr WriteRule ruleOf(const RegisterTypeInfo& info)
{
    if (info.area == AREA_OUTPUT) // a stream of bits
        return {info.bytesPerElement * BITS_PER_BYTE, BYTES_PER_WORD * BITS_PER_BYTE, 1};
    if (info.definition == DEF_BIT || info.definition == DEF_BYTE) // one element to a record
        return {1, BYTES_PER_WORD, 0};
    return {info.bytesPerElement / BYTES_PER_WORD, 1, info.bytesPerElement}; // words
}

/// False for an array that shows memory of others (QByteArray::fromRawData), which may be gone when
/// the write is sent. Qt 4 does not tell them apart.
bool ownsItsBytes(const QByteArray& value)
{
    return QT_VERSION >= QT_VERSION_CHECK(5, 0, 0) && value.capacity() > 0;
}
} // namespace

QByteArray normalisedValue(const RegisterTypeInfo& info, const QByteArray& value, int count)
{
    const int bytes = valueBytes(info, count);
    if (info.definition != DEF_BYTE && value.size() == bytes && ownsItsBytes(value))
        return value;
    QByteArray normal(bytes, '\0');
    unsigned char* out = reinterpret_cast<unsigned char*>(normal.data());
    if (info.definition != DEF_BYTE) {
        putBytes(out, value, 0, bytes);
        return normal;
    }
    // The runtime hands bytes over in 16-bit slots of which the low byte counts.
    const int present = std::min(bytes, (value.size() + 1) / BYTES_PER_WORD);
    for (int i = 0; i < present; ++i)
        out[i] = static_cast<unsigned char>(value.at(i * BYTES_PER_WORD));
    return normal;
}

int bytesPerPiece(const RegisterTypeInfo& info, int blockLimit, int total)
{
    const int multiple = ruleOf(info).pieceMultiple;
    if (multiple == 0)
        return 1;
    if (blockLimit < 1)
        return total;
    const qint64 rounded = (qint64{blockLimit} + multiple - 1) / multiple * multiple;
    return static_cast<int>(std::min<qint64>(rounded, std::max(total, 1)));
}

WritePiece pieceAt(const RegisterTypeInfo& info, int address, const QByteArray& value, int position,
                   int bytes)
{
    const WriteRule rule = ruleOf(info);
    const bool whole = position == 0 && bytes == value.size();
    const QByteArray data = whole ? value : value.mid(position, bytes);
    const qint64 start = qint64{address} * rule.unitsPerElement +
                         qint64{position} * rule.unitsPerTwoBytes / BYTES_PER_WORD;
    return {wrapToInt(start), pieceLength(info, data.size()), data};
}

int pieceLength(const RegisterTypeInfo& info, qint64 bytes)
{
    return wrapToInt(bytes * ruleOf(info).unitsPerTwoBytes / BYTES_PER_WORD);
}

qint64 piecePosition(const RegisterTypeInfo& info, int address, int pieceAddress)
{
    const WriteRule rule = ruleOf(info);
    const qint64 twice = (pieceAddress - qint64{address} * rule.unitsPerElement) * BYTES_PER_WORD;
    return twice % rule.unitsPerTwoBytes == 0 ? twice / rule.unitsPerTwoBytes : -1;
}

WritePiece outputBitPiece(int address, const QByteArray& value, int count)
{
    return {address, count, packedBits(value, count, 1)};
}
