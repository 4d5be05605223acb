// Cuts a stream of bytes into requests.
#ifndef PLC_FRAMER_H
#define PLC_FRAMER_H

#include <QByteArray>
#include <QList>

namespace plc
{
/// Longer than the 3.5 characters of a serial line: a pseudo-terminal and TCP have no bit times,
/// and a request that the sender's scheduler tore apart must still arrive whole.
inline constexpr int SILENT_GAP_MS = 50;
/// More than the longest request of either framing.
inline constexpr int MAX_PENDING_BYTES = 512;

using FrameLength = int (*)(const QByteArray& bytes, bool silent);

/// Bytes that do not make up a checked request hold up what follows them until the line has been
/// silent, as on a real line: where the next request begins cannot be known before.
struct Framer {
    QByteArray pending = {};
    qint64 lastArrivalMs = 0;
};

/// Takes bytes that arrived at `nowMs`; returns the requests they complete.
QList<QByteArray> takeBytes(Framer& framer, FrameLength frameLength, const QByteArray& bytes,
                            qint64 nowMs);
/// Ends what is pending if the line has been silent until `nowMs`.
QList<QByteArray> takeSilence(Framer& framer, FrameLength frameLength, qint64 nowMs);
} // namespace plc

#endif
