#include "trace.h"

#include "decode.h"

namespace
{

constexpr int SECONDS_WIDTH = 5;
constexpr int FRACTION_DIGITS = 6;
constexpr int SHORT_FRAME_WIDTH = 23; // eight bytes; the meanings of short frames line up
constexpr int DECIMAL = 10;

char direction(FrameKind kind)
{
    switch (kind) {
    case FrameKind::Sent:
        return '>';
    case FrameKind::Stray:
        return '!';
    default:
        return '<';
    }
}

QString meaning(const WireFrame& frame)
{
    switch (frame.kind) {
    case FrameKind::Sent:
        return describeRequest(frame.bytes, frame.remote);
    case FrameKind::Reply:
        return describeReply(frame.bytes, frame.request, frame.remote);
    case FrameKind::Stray:
        return describeStray(frame.bytes);
    default:
        return describeSilence(frame.request, frame.remote);
    }
}

} // namespace

QString traceLine(const WireFrame& frame)
{
    const bool silence = frame.kind == FrameKind::NoReply;
    const QByteArray hex = silence ? QByteArray() : frame.bytes.toHex(' ').toUpper();
    return QStringLiteral("%1.%2 %3 ")
               .arg(frame.at / MICROS_PER_SECOND, SECONDS_WIDTH)
               .arg(frame.at % MICROS_PER_SECOND, FRACTION_DIGITS, DECIMAL, QLatin1Char('0'))
               .arg(QLatin1Char(direction(frame.kind))) +
           QLatin1String(hex.leftJustified(SHORT_FRAME_WIDTH)) + QStringLiteral("  | ") +
           meaning(frame);
}
