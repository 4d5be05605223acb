#include "framer.h"

namespace plc
{
namespace
{
QList<QByteArray> takeFrames(Framer& framer, FrameLength frameLength, bool silent)
{
    QList<QByteArray> frames;
    while (const int length = frameLength(framer.pending, silent)) {
        frames.append(framer.pending.left(length));
        framer.pending.remove(0, length);
    }
    return frames;
}
} // namespace

QList<QByteArray> takeBytes(Framer& framer, FrameLength frameLength, const QByteArray& bytes,
                            qint64 nowMs)
{
    QList<QByteArray> frames = takeSilence(framer, frameLength, nowMs);
    framer.lastArrivalMs = nowMs;
    framer.pending += bytes;
    frames += takeFrames(framer, frameLength, false);
    if (framer.pending.size() > MAX_PENDING_BYTES)
        framer.pending.clear();
    return frames;
}

QList<QByteArray> takeSilence(Framer& framer, FrameLength frameLength, qint64 nowMs)
{
    if (nowMs - framer.lastArrivalMs < SILENT_GAP_MS)
        return {};
    const QList<QByteArray> frames = takeFrames(framer, frameLength, true);
    framer.pending.clear();
    return frames;
}
} // namespace plc
