#include "timing.h"

#include "talmor_kp410_port.h"

#include <algorithm>

namespace
{

constexpr int BITS_PER_CHARACTER = 11; // start, eight data, parity or second stop, stop
constexpr int FASTEST_COUNTED_BAUD = 19200;
constexpr Micros FIXED_SILENCE = 1750;
constexpr int LONGEST_FRAME = 256;  // bytes of the serial-line layout
constexpr int RECEIVE_LIMIT = 4096; // bytes; endless noise ends here

} // namespace

Micros silentInterval(int baud)
{
    if (baud > FASTEST_COUNTED_BAUD)
        return FIXED_SILENCE;
    constexpr qint64 halfCharacters = 7;
    const qint64 twice = halfCharacters * BITS_PER_CHARACTER * MICROS_PER_SECOND;
    return (twice + 2 * baud - 1) / (2 * baud);
}

Micros transmissionTime(int bytes, int baud)
{
    return qint64{bytes} * BITS_PER_CHARACTER * MICROS_PER_SECOND / baud;
}

ReceiveLimits receiveLimits(int requestBytes, int replyLength, int baud, Micros timeout, Micros gap)
{
    const int reply = replyLength == REPLY_ANY ? LONGEST_FRAME : replyLength;
    const Micros silence = silentInterval(baud);
    return {silence, std::max(silence, gap),
            timeout + transmissionTime(requestBytes + reply, baud)};
}

Micros receiveWait(int bytes, int replyLength, Micros sinceLastByte, Micros sinceRequest,
                   const ReceiveLimits& limits)
{
    if (replyLength == REPLY_NONE || bytes >= RECEIVE_LIMIT)
        return 0;
    Micros left = limits.timeout - sinceRequest;
    if (bytes > 0) {
        const bool complete = replyLength > 0 && bytes >= replyLength;
        left = std::min(left, (complete ? limits.silence : limits.gap) - sinceLastByte);
    }
    return std::max(Micros{0}, left);
}
