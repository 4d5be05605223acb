#include "late_replies.h"

#include "../plc/wire.h"
#include "decode_parts.h"

#include <algorithm>

namespace
{

constexpr int EXPECTED_TIMEOUTS = 2; // an answer later than this is not expected
constexpr int STATION_OFFSET = 0, FUNCTION_OFFSET = 1, BYTE_COUNT_OFFSET = 2;
constexpr int EXCEPTION_FLAG = 0x80;
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

bool isRead(int function)
{
    return repeatedBytes(function) == FUNCTION_OFFSET + 1;
}

bool answersLookAlike(const Asked& a, const Asked& b)
{
    if (a.remote || b.remote)
        return true;
    const int repeated = repeatedBytes(plc::byteAt(a.frame, FUNCTION_OFFSET));
    return a.frame.left(repeated) == b.frame.left(repeated) && a.replyLength == b.replyLength;
}

/// Whether an undamaged reply of the local framing says what a reply to the request must say.
bool answers(const Asked& asked, const QByteArray& reply)
{
    const int function = plc::byteAt(asked.frame, FUNCTION_OFFSET);
    if (reply.at(STATION_OFFSET) != asked.frame.at(STATION_OFFSET))
        return false;
    if (plc::byteAt(reply, FUNCTION_OFFSET) == (function | EXCEPTION_FLAG))
        return true;
    const int repeated = repeatedBytes(function);
    if (reply.left(repeated) != asked.frame.left(repeated))
        return false;
    return !isRead(function) || reply.size() != asked.replyLength ||
           plc::byteAt(reply, BYTE_COUNT_OFFSET) == reply.size() - BYTES_BESIDE_DATA;
}

} // namespace

void noteOutcome(LateReplies* late, const Asked& asked, bool answered, Micros askedAt,
                 Micros timeout)
{
    QVector<Unanswered>& requests = late->requests;
    const auto expired = [askedAt](const Unanswered& u) { return u.expires <= askedAt; };
    requests.erase(std::remove_if(requests.begin(), requests.end(), expired), requests.end());
    const auto sameFrame = [&asked](const Unanswered& u) { return u.asked.frame == asked.frame; };
    const auto earlierTry = std::find_if(requests.begin(), requests.end(), sameFrame);
    if (answered && earlierTry == requests.end())
        return;
    if (answered)
        requests.erase(earlierTry);
    requests << Unanswered{asked, askedAt + EXPECTED_TIMEOUTS * timeout};
}

Micros lateReplyHold(const LateReplies& late, const Asked& next, Micros now)
{
    Micros hold = 0;
    for (const Unanswered& unanswered : late.requests)
        if (unanswered.asked.frame != next.frame && answersLookAlike(unanswered.asked, next))
            hold = std::max(hold, unanswered.expires - now);
    return hold;
}

bool isForeign(const Asked& asked, const QByteArray& reply)
{
    if (asked.remote || reply.size() < SHORTEST_REPLY || asked.frame.size() < SHORTEST_REPLY)
        return false;
    return crcGood(reply, reply.size()) && !answers(asked, reply);
}
