#include "reply_match.h"

#include "../plc/wire.h"
#include "../remote_layout.h"
#include "decode_parts.h"

namespace
{

constexpr int STATION_OFFSET = 0, FUNCTION_OFFSET = 1, BYTE_COUNT_OFFSET = 2;
constexpr int EXCEPTION_LENGTH = 5;  // station, function, code, CRC
constexpr int SHORTEST_REPLY = 4;    // station, function, CRC
constexpr int BYTES_BESIDE_DATA = 5; // of the reply to a read: station, function, count, CRC

/// Bytes at the front of a request that its reply begins with, too: station and function, of a
/// write also the address, and the count or the value.
int repeatedBytes(int function)
{
    switch (function) {
    case FC_WRITE_MEMORY_WORD:
    case FC_WRITE_OUTPUT_BITS:
    case FC_WRITE_MEMORY_WORDS:
        return 6;
    case FC_WRITE_SPECIAL_BIT:
        return 4;
    default:
        return 2;
    }
}

int functionOf(const QByteArray& frame)
{
    return plc::byteAt(frame, FUNCTION_OFFSET);
}

bool isRead(const Asked& asked)
{
    return !asked.remote && repeatedBytes(functionOf(asked.frame)) == BYTE_COUNT_OFFSET;
}

bool countsItself(const QByteArray& reply)
{
    return plc::byteAt(reply, BYTE_COUNT_OFFSET) == reply.size() - BYTES_BESIDE_DATA;
}

} // namespace

bool isWrite(const Asked& asked)
{
    return asked.remote ? plc::byteAt(asked.frame, remote_layout::RW_FLAG_OFFSET) == RW_WRITE
                        : !isRead(asked);
}

int stationAsked(const Asked& asked)
{
    return plc::byteAt(asked.frame, asked.remote ? remote_layout::STATION_OFFSET : STATION_OFFSET);
}

bool answersLookAlike(const Asked& a, const Asked& b)
{
    if (a.remote || b.remote)
        return true;
    const int repeated = repeatedBytes(functionOf(a.frame));
    return a.frame.left(repeated) == b.frame.left(repeated) && a.replyLength == b.replyLength;
}

bool isWhole(const QByteArray& bytes)
{
    return bytes.size() >= SHORTEST_REPLY && crcGood(bytes, bytes.size());
}

bool isFromStation(const Asked& asked, const QByteArray& reply)
{
    return isWhole(reply) &&
           (asked.remote || reply.at(STATION_OFFSET) == asked.frame.at(STATION_OFFSET));
}

bool isForeign(const Asked& asked, const QByteArray& reply)
{
    if (asked.remote || !isWhole(reply) || isException(asked, reply))
        return false;
    const int repeated = repeatedBytes(functionOf(asked.frame));
    if (reply.left(repeated) != asked.frame.left(repeated))
        return true;
    return isRead(asked) && reply.size() == asked.replyLength && !countsItself(reply);
}

bool isException(const Asked& asked, const QByteArray& reply)
{
    return !asked.remote && reply.size() == EXCEPTION_LENGTH && isFromStation(asked, reply) &&
           functionOf(reply) == (functionOf(asked.frame) | EXCEPTION_FLAG);
}

bool isEchoed(const Asked& asked, const QByteArray& reply)
{
    return isRead(asked) && reply.startsWith(asked.frame) &&
           isFromStation(asked, reply.mid(asked.frame.size()));
}
