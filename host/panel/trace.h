// The frames on the line, and the lines of --trace that show them.
#pragma once

#include "timing.h"

#include <QByteArray>
#include <QString>

enum class FrameKind {
    Sent,
    Reply,
    Stray,  ///< thrown away: late, another station's, noise
    NoReply ///< to a request that wanted one
};

/// One frame on the line, as the loop saw it.
struct WireFrame {
    Micros at = 0; ///< since the start of the run, of the first byte; not negative
    FrameKind kind = FrameKind::Sent;
    QByteArray bytes;    ///< as on the line; not looked at when no reply came
    QByteArray request;  ///< that was to be answered; looked at for Reply and NoReply
    bool remote = false; ///< framing of the request
};

/// Seconds, direction (> sent, < received, ! stray), all bytes, what they mean. One line without
/// its end.
QString traceLine(const WireFrame& frame);
