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

Request parseSpecialBit(const QByteArray& frame)
{
    Request request{FC_WRITE_SPECIAL_BIT, wordAt(frame, ADDRESS_OFFSET), 1};
    const int flagOffset = frame.size() - SPECIAL_BIT_FLAG_FROM_END;
    const bool on = flagOffset > VALUE_OFFSET && byteAt(frame, VALUE_OFFSET) != 0;
    const int flagAndZero = (on ? FLAG_ON : 0) << 8;
    if (flagOffset >= VALUE_OFFSET && wordAt(frame, flagOffset) == flagAndZero)
        appendByte(request.data, on);
    return request; // without data when the fields disagree: an illegal value
}
} // namespace

int localFrameLength(const QByteArray& bytes, bool silent)
{
    if (bytes.size() < SHORTEST_LENGTH)
        return 0;
    switch (byteAt(bytes, FUNCTION_OFFSET)) {
    case FC_READ_OUTPUT_BITS:
    case FC_READ_INPUT_BITS:
    case FC_READ_MEMORY_WORDS:
    case FC_READ_SPECIAL_BITS:
    case FC_READ_SPECIAL_WORDS:
    case FC_WRITE_MEMORY_WORD:
        return checkedLength(bytes, FIXED_LENGTH);
    case FC_WRITE_OUTPUT_BITS:
    case FC_WRITE_MEMORY_WORDS:
        if (bytes.size() < DATA_OFFSET)
            return 0;
        return checkedLength(bytes, DATA_OFFSET + byteAt(bytes, BYTE_COUNT_OFFSET) + CRC_BYTES);
    case FC_WRITE_SPECIAL_BIT:
        if (const int length = checkedLength(bytes, SPECIAL_BIT_LENGTH))
            return length;
        [[fallthrough]];
    default:
        // Nothing in the request tells its length, so only silence ends it: a CRC fits before the
        // end too often, one byte early whenever its high byte is 0.
        return silent ? checkedLength(bytes, bytes.size()) : 0;
    }
}

Request parseLocal(const QByteArray& frame, const Memory& /*memory*/)
{
    const int function = byteAt(frame, FUNCTION_OFFSET);
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
    case FC_WRITE_SPECIAL_BIT:
        return parseSpecialBit(frame);
    default:
        return {function};
    }
}
} // namespace plc
