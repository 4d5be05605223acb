#include "local.h"

#include "wire.h"

#include <talmor_kp410_port.h>

namespace plc
{
namespace
{
constexpr int FUNCTION_OFFSET = 1;
constexpr int ADDRESS_OFFSET = 2;
constexpr int COUNT_OFFSET = 4;      ///< reads and writes of several
constexpr int VALUE_OFFSET = 4;      ///< writes of one
constexpr int BYTE_COUNT_OFFSET = 6; ///< writes of several
constexpr int DATA_OFFSET = 7;

constexpr int FIXED_LENGTH = 8;
constexpr int SHORTEST_LENGTH = 2 + CRC_BYTES; ///< station, function
constexpr int SPECIAL_BIT_LENGTH = 9; ///< with one value byte; the layout allows any number
constexpr int SPECIAL_BIT_FLAG_FROM_END = 2 + CRC_BYTES; ///< the flag, a zero byte, the CRC
constexpr int FLAG_ON = 0xFF;

int checkedLength(const QByteArray& bytes, int length)
{
    return bytes.size() >= length && crc16(bytes.left(length)) == 0 ? length : 0;
}

/// The length that the request itself tells; 0 when it does not, or not yet.
int toldLength(const QByteArray& bytes)
{
    switch (byteAt(bytes, FUNCTION_OFFSET)) {
    case FC_READ_OUTPUT_BITS:
    case FC_READ_INPUT_BITS:
    case FC_READ_MEMORY_WORDS:
    case FC_READ_SPECIAL_BITS:
    case FC_READ_SPECIAL_WORDS:
    case FC_WRITE_MEMORY_WORD:
        return FIXED_LENGTH;
    case FC_WRITE_OUTPUT_BITS:
    case FC_WRITE_MEMORY_WORDS:
        return bytes.size() < DATA_OFFSET
                   ? 0
                   : DATA_OFFSET + byteAt(bytes, BYTE_COUNT_OFFSET) + CRC_BYTES;
    case FC_WRITE_SPECIAL_BIT:
        return SPECIAL_BIT_LENGTH;
    default:
        return 0;
    }
}

bool flagAgrees(int value, int flagAndZero)
{
    return flagAndZero == (value != 0 ? FLAG_ON : 0) << 8;
}

/// A CRC that fits after one value byte also fits there in a request with two whose CRC ends in 0.
/// Of such a request either the flag is found wrong or the first CRC byte is the zero of the flag.
bool mayHaveMoreValues(const QByteArray& bytes)
{
    constexpr int flagOffset = SPECIAL_BIT_LENGTH - SPECIAL_BIT_FLAG_FROM_END;
    constexpr int crcOffset = SPECIAL_BIT_LENGTH - CRC_BYTES;
    return byteAt(bytes, FUNCTION_OFFSET) == FC_WRITE_SPECIAL_BIT &&
           bytes.size() >= SPECIAL_BIT_LENGTH &&
           (!flagAgrees(byteAt(bytes, VALUE_OFFSET), wordAt(bytes, flagOffset)) ||
            byteAt(bytes, crcOffset) == 0);
}

Request parseSpecialBit(const QByteArray& frame)
{
    Request request{FC_WRITE_SPECIAL_BIT, wordAt(frame, ADDRESS_OFFSET), 1};
    const int flagOffset = frame.size() - SPECIAL_BIT_FLAG_FROM_END;
    const bool on = flagOffset > VALUE_OFFSET && byteAt(frame, VALUE_OFFSET) != 0;
    if (flagOffset >= VALUE_OFFSET && flagAgrees(on ? 1 : 0, wordAt(frame, flagOffset)))
        appendByte(request.data, on);
    return request; // without data when the fields disagree: an illegal value
}
} // namespace

int localFrameLength(const QByteArray& bytes, bool silent)
{
    if (bytes.size() < SHORTEST_LENGTH)
        return 0;
    // Only silence ends a request that does not tell its length, or tells another than it has: a
    // CRC fits before the end too often, one byte early whenever its high byte is 0.
    if (silent && checkedLength(bytes, bytes.size()) != 0)
        return bytes.size();
    if (!silent && mayHaveMoreValues(bytes))
        return 0;
    return checkedLength(bytes, toldLength(bytes));
}

Request parseLocal(const QByteArray& frame, const Memory& /*memory*/)
{
    const int function = byteAt(frame, FUNCTION_OFFSET);
    if (function == FC_WRITE_SPECIAL_BIT)
        return parseSpecialBit(frame);
    if (toldLength(frame) != frame.size())
        return {function}; // without a count: an illegal value where the function is known
    switch (function) {
    case FC_READ_OUTPUT_BITS:
    case FC_READ_INPUT_BITS:
    case FC_READ_MEMORY_WORDS:
    case FC_READ_SPECIAL_BITS:
    case FC_READ_SPECIAL_WORDS:
        return {function, wordAt(frame, ADDRESS_OFFSET), wordAt(frame, COUNT_OFFSET)};
    case FC_WRITE_MEMORY_WORD:
        return {function, wordAt(frame, ADDRESS_OFFSET), 1, frame.mid(VALUE_OFFSET, 2)};
    case FC_WRITE_OUTPUT_BITS:
    case FC_WRITE_MEMORY_WORDS:
        return {function, wordAt(frame, ADDRESS_OFFSET), wordAt(frame, COUNT_OFFSET),
                frame.mid(DATA_OFFSET, byteAt(frame, BYTE_COUNT_OFFSET))};
    default:
        return {function};
    }
}
} // namespace plc
