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
    std::function<std::unique_ptr<QIODevice>(QString* error)> open;
    std::function<bool(const QIODevice&)> lost;
    std::function<QString(const QIODevice&)> lossText; ///< why it was lost
    std::function<void(const WireFrame&)> tap;         ///< told every frame; may be empty

    std::unique_ptr<QIODevice> device; ///< null while the link is down
    QString error;                     ///< why it is down
    Micros retryAt = 0;
    Micros backOff = 0;
    int opened = 0;
    int failedTries = 0;   ///< to open it since it was up
    Micros lastByteAt = 0; ///< sent or received
};

/// Opens the link when it is down and its time has come. @return true when it is up now
bool bringUp(Link* link, Micros now);

void takeDown(Link* link, const QString& why, Micros now);

Micros nextBackOff(Micros last);
