#include "fault_effect.h"

#include "wire.h"

#include <algorithm>

namespace plc
{
namespace
{
constexpr int INVERT = 0xFF;
constexpr int STATION_OFFSET = 0;

QByteArray fromStation(const QByteArray& reply, int number)
{
    const int own = byteAt(reply, STATION_OFFSET);
    const int next = own < MAX_STATION ? own + 1 : MIN_STATION;
    QByteArray renamed;
    appendByte(renamed, number == NEXT_STATION ? next : number);
    return withCrc(renamed + reply.mid(STATION_OFFSET + 1, reply.size() - 1 - CRC_BYTES));
}

QByteArray withBadCrc(const QByteArray& reply)
{
    // Made from the good one, so that twice is as bad as once.
    const QByteArray good = withCrc(reply.left(reply.size() - CRC_BYTES));
    QByteArray bad = good.left(good.size() - CRC_BYTES);
    for (int i = bad.size(); i < good.size(); ++i)
        appendByte(bad, byteAt(good, i) ^ INVERT);
    return bad;
}

QByteArray spoilt(const Fault& fault, const QByteArray& reply, const QByteArray& before,
                  Generator& noise)
{
    switch (fault.kind) {
    case FAULT_STALE:
        return before;
    case FAULT_STATION:
        return fromStation(reply, fault.parameter);
    case FAULT_CRC:
        return withBadCrc(reply);
    case FAULT_TRUNCATE:
        return reply.left(std::max(0, reply.size() - fault.parameter));
    case FAULT_EXTEND:
        return reply + randomBytes(fault.parameter, noise);
    case FAULT_DROP:
    case FAULT_BABBLE:
        return {};
    default:
        return reply;
    }
}
} // namespace

QByteArray randomBytes(int count, Generator& noise)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        appendByte(bytes, static_cast<int>(noise() & 0xFF));
    return bytes;
}

Sending applyFaults(const QList<Fault>& faults, const QByteArray& request, const QByteArray& reply,
                    const QByteArray& before, Generator& noise)
{
    Sending sending;
    sending.reply = reply;
    for (const Fault& fault : faults) {
        if (!sending.reply.isEmpty())
            sending.reply = spoilt(fault, sending.reply, before, noise);
        if (fault.kind == FAULT_BABBLE) {
            sending.babble = true;
            sending.babbleMs = fault.parameter;
        } else if (fault.kind == FAULT_NOISE) {
            sending.noise += randomBytes(fault.parameter, noise);
        } else if (fault.kind == FAULT_ECHO) {
            sending.echo = request;
        } else if (fault.kind == FAULT_DELAY) {
            sending.delayMs += fault.parameter;
        } else if (fault.kind == FAULT_SLOW) {
            sending.slowMs += fault.parameter;
        }
    }
    return sending;
}

QList<TimedBytes> schedule(const Sending& sending)
{
    const QByteArray bytes = sending.noise + sending.reply;
    if (bytes.isEmpty())
        return {};
    if (sending.slowMs == 0)
        return {{sending.delayMs, bytes}};
    QList<TimedBytes> timed;
    const int gaps = std::max(1, bytes.size() - 1);
    for (int i = 0; i < bytes.size(); ++i)
        timed.append({sending.delayMs + qint64{sending.slowMs} * i / gaps, bytes.mid(i, 1)});
    return timed;
}
} // namespace plc
