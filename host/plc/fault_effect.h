// What faults make of a reply.
#ifndef PLC_FAULT_EFFECT_H
#define PLC_FAULT_EFFECT_H

#include "fault_plan.h"

#include <QByteArray>

namespace plc
{
/// What goes out for one request, in this order.
struct Sending {
    QByteArray echo = {};  ///< at once
    QByteArray noise = {}; ///< with the reply, before it
    QByteArray reply = {};
    int delayMs = 0;     ///< how late noise and reply begin
    int slowMs = 0;      ///< how long their bytes are drawn out
    bool babble = false; ///< random bytes from now on, for babbleMs
    int babbleMs = UNTIL_THE_END;
};

/// Bytes to send `atMs` after the request.
struct TimedBytes {
    qint64 atMs;
    QByteArray bytes;
};

/// What is sent instead of `reply` alone. Without a reply there is none to spoil: only noise, echo
/// and babble still come.
/// @param faults in the order in which they take effect
/// @param request as it came
/// @param before the reply to the request before on the same link; empty when there was none
Sending applyFaults(const QList<Fault>& faults, const QByteArray& request, const QByteArray& reply,
                    const QByteArray& before, Generator& noise);
/// When which bytes of noise and reply go out: all at once, or one by one when drawn out.
QList<TimedBytes> schedule(const Sending& sending);

QByteArray randomBytes(int count, Generator& noise);
} // namespace plc

#endif
