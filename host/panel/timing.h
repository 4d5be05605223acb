// The times of the serial line as pure functions. All times are in microseconds.
#pragma once

#include <QtGlobal>

using Micros = qint64;

constexpr Micros MICROS_PER_MILLI = 1000;
constexpr Micros MICROS_PER_SECOND = 1000 * 1000;
constexpr Micros NEVER = -1;

constexpr Micros USB_GAP = 20 * MICROS_PER_MILLI; ///< USB adapters deliver in pieces

/// Silence that separates two frames: 3.5 characters, 1.75 ms above 19,200 baud.
Micros silentInterval(int baud);

/// Time that `bytes` characters take on the line.
Micros transmissionTime(int bytes, int baud);

struct ReceiveLimits {
    Micros silence; ///< ends a reply that has all its bytes
    Micros gap;     ///< ends a reply that lacks some
    Micros timeout; ///< ends the waiting, counted from the request
};

/// @param requestBytes sent
/// @param replyLength expected, or a special value of ReplyLength
/// @param gap that the link may make within a reply; at least the silent interval is taken
ReceiveLimits receiveLimits(int requestBytes, int replyLength, int baud, Micros timeout,
                            Micros gap);

/// How long to wait for more of a reply, 0 when it has ended. A reply with all its bytes is still
/// listened to for the silent interval: one byte more makes it a different, wrong reply.
Micros receiveWait(int bytes, int replyLength, Micros sinceLastByte, Micros sinceRequest,
                   const ReceiveLimits& limits);
