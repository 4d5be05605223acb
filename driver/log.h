/// The line that the message handler writes.
#ifndef KP410_DRIVER_LOG_H
#define KP410_DRIVER_LOG_H

#include <QByteArray>
#include <QDateTime>

/// "yyyy.MM.dd.hh:mm:ss.z:message" and a line end, z being the milliseconds without leading zeros.
QByteArray logLine(const QDateTime& when, const char* message);

#endif
