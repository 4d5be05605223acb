#include "exchange.h"

#include <algorithm>

namespace
{

int ceilMillis(Micros time)
{
    return static_cast<int>((std::max(Micros{0}, time) + MICROS_PER_MILLI - 1) / MICROS_PER_MILLI);
}

/// Waits at most `time` for input. @return what came
QByteArray listen(Link* link, Micros time, const Clock& clock)
{
    QIODevice& device = *link->device;
    device.waitForReadyRead(ceilMillis(time));
    const QByteArray bytes = device.readAll();
    if (!bytes.isEmpty())
        link->lastByteAt = clock();
    return bytes;
}

/// Throws input away until the line has been silent. Noise that never ends delays a request by one
/// time-out, not for ever.
int discardUntilSilent(Link* link, const Request& request, const Clock& clock)
{
    const Micros silence = silentInterval(link->baud);
    const Micros heldUntil = clock() + request.hold;
    const Micros patience = heldUntil + silence + request.timeout;
    int discarded = 0;
    for (;;) {
        const Micros quietAt = std::max(link->lastByteAt + silence, heldUntil);
        const int bytes = listen(link, quietAt - clock(), clock).size();
        discarded += bytes;
        const Micros now = clock();
        if ((bytes == 0 && now >= quietAt) || now >= patience || link->lost(*link->device))
            return discarded;
    }
}

bool send(Link* link, const Request& request, const Clock& clock)
{
    QIODevice& device = *link->device;
    bool sent = device.write(request.frame) == request.frame.size();
    while (sent && device.bytesToWrite() > 0)
        sent = device.waitForBytesWritten(ceilMillis(request.timeout));
    link->lastByteAt = clock() + transmissionTime(request.frame.size(), link->baud);
    return sent && !link->lost(device);
}

} // namespace

Exchanged exchange(Link* link, const Request& request, const Clock& clock)
{
    Exchanged result;
    result.discarded = discardUntilSilent(link, request, clock);
    result.requestedAt = clock();
    if (link->lost(*link->device) || !send(link, request, clock)) {
        result.linkLost = true;
        return result;
    }
    const ReceiveLimits limits =
        receiveLimits(request.frame.size(), request.replyLength, link->baud, request.timeout);
    for (;;) {
        const Micros now = clock();
        const Micros wait = receiveWait(result.reply.size(), request.replyLength,
                                        now - link->lastByteAt, now - result.requestedAt, limits);
        if (wait == 0)
            return result;
        result.reply += listen(link, wait, clock);
        if (link->lost(*link->device)) {
            result.linkLost = true;
            return result;
        }
    }
}
