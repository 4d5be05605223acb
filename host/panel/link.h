// The line to the controller: a serial device or a TCP connection, opened again when it is lost.
#pragma once

#include "trace.h"

#include <QIODevice>
#include <QString>

#include <functional>
#include <memory>

struct Link {
    QString name;
    int baud = 0;
    Micros gap = USB_GAP; ///< may lie between two bytes of a reply
    std::function<std::unique_ptr<QIODevice>(QString* error)> open;
    std::function<bool(const QIODevice&)> lost;
    std::function<QString(const QIODevice&)> lossText; ///< why it was lost
    std::function<void(const WireFrame&)> tap;         ///< told every frame; may be empty

    std::unique_ptr<QIODevice> device; ///< null while the link is down
    QString error;                     ///< why it is down
    Micros retryAt = 0;
    Micros backOff = 0;
    int opened = 0;
    int failedTries = 0;   ///< in a row that brought not a byte
    bool heard = false;    ///< a byte came since it was opened
    Micros lastByteAt = 0; ///< sent or received
};

/// Opens the link when it is down and its time has come. @return true when it is up now
bool bringUp(Link* link, Micros now);

/// A peer that takes connections and closes them counts as a failed try, or it would be tried
/// without end or pause.
void takeDown(Link* link, const QString& why, Micros now);

/// Takes note of bytes that came.
void noteHeard(Link* link, Micros now);
