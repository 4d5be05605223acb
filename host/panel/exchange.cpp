#include "exchange.h"

#include "talmor_kp410_port.h"

#include <algorithm>

namespace
{

constexpr int LONGEST_STRAY = 256; // bytes of the longest frame

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
        noteHeard(link, clock());
    return bytes;
}

void tap(const Link& link, const WireFrame& frame)
{
    if (link.tap)
        link.tap(frame);
}

void discard(const Link& link, const QByteArray& bytes, Micros at, Exchanged* result)
{
    if (bytes.isEmpty())
        return;
    result->strays << Stray{bytes, at};
    tap(link, {at, FrameKind::Stray, bytes, {}, false});
}

/// Listens until the line has been silent, and throws away what comes. Where answers to earlier
/// requests may come, each that does puts off the end: the next one's may follow as late. Noise
/// that never ends delays a request by one time-out, not for ever.
void discardUntilSilent(Link* link, const Request& request, const Clock& clock, Exchanged* result)
{
    const Micros silence = silentInterval(link->baud);
    const Micros spacing = request.timeout + request.timeout / 2;
    Micros heldUntil = clock() + request.hold.time;
    int expected = request.hold.expected;
    QByteArray stray;
    for (;;) {
        const Micros quietAt = std::max(link->lastByteAt + silence, heldUntil);
        const QByteArray bytes = listen(link, quietAt - clock(), clock);
        const Micros now = clock();
        stray += bytes;
        const bool whole = !bytes.isEmpty() && isWhole(stray);
        if (whole && --expected > 0)
            heldUntil = std::max(heldUntil, now + spacing);
        if (whole || stray.size() > LONGEST_STRAY) {
            discard(*link, stray, now, result);
            stray.clear();
        }
        const bool quiet = bytes.isEmpty() && now >= quietAt;
        if (quiet || now >= heldUntil + silence + request.timeout || link->lost(*link->device))
            return discard(*link, stray, now, result);
    }
}

bool send(Link* link, const Request& request, const Clock& clock)
{
    const QByteArray& frame = request.asked.frame;
    QIODevice& device = *link->device;
    bool sent = device.write(frame) == frame.size();
    while (sent && device.bytesToWrite() > 0)
        sent = device.waitForBytesWritten(ceilMillis(request.timeout));
    link->lastByteAt = clock() + transmissionTime(frame.size(), link->baud);
    return sent && !link->lost(device);
}

/// Takes the request itself off the front of what came, once it is there whole.
bool takeEcho(const QByteArray& frame, QByteArray* bytes)
{
    if (!bytes->startsWith(frame))
        return false;
    bytes->remove(0, frame.size());
    return true;
}

/// @return true when the reply has ended, or will not come
bool receive(Link* link, const Request& request, const Clock& clock, Exchanged* result)
{
    const Asked& asked = request.asked;
    const ReceiveLimits limits = receiveLimits(asked.frame.size(), asked.replyLength, link->baud,
                                               request.timeout, link->gap);
    bool echoed = !request.echo;
    for (;;) {
        const Micros now = clock();
        const bool exception = isException(asked, result->reply);
        const int expected = exception ? result->reply.size() : asked.replyLength;
        const Micros wait = receiveWait(result->reply.size(), expected, now - link->lastByteAt,
                                        now - result->requestedAt, limits);
        if (wait == 0 && !isForeign(asked, result->reply))
            return true;
        if (wait == 0) {
            discard(*link, result->reply, link->lastByteAt, result);
            result->reply.clear();
            continue;
        }
        const bool first = result->reply.isEmpty();
        result->reply += listen(link, wait, clock);
        if (first)
            result->repliedAt = clock();
        if (!echoed)
            echoed = takeEcho(asked.frame, &result->reply);
        if (link->lost(*link->device))
            return asked.replyLength > 0 && result->reply.size() == asked.replyLength;
    }
}

} // namespace

Exchanged exchange(Link* link, const Request& request, const Clock& clock)
{
    Exchanged result;
    discardUntilSilent(link, request, clock, &result);
    result.requestedAt = clock();
    if (link->lost(*link->device) || !send(link, request, clock)) {
        result.linkLost = true;
        return result;
    }
    const Asked& asked = request.asked;
    tap(*link, {result.requestedAt, FrameKind::Sent, asked.frame, {}, asked.remote});
    result.repliedAt = result.requestedAt;
    result.linkLost = !receive(link, request, clock, &result);
    if (asked.replyLength == REPLY_NONE || result.linkLost)
        return result;
    const FrameKind kind = result.reply.isEmpty() ? FrameKind::NoReply : FrameKind::Reply;
    const Micros at = result.reply.isEmpty() ? clock() : result.repliedAt;
    tap(*link, {at, kind, result.reply, asked.frame, asked.remote});
    return result;
}

bool lostMeanwhile(Link* link, Micros now)
{
    if (link->device->waitForReadyRead(0) && !link->device->readAll().isEmpty())
        noteHeard(link, now);
    return link->lost(*link->device);
}
