// A TCP connection that carries the bytes of the serial line, as serial device servers do.
#pragma once

#include "link.h"

struct TcpSettings {
    QString host;
    quint16 port = 0;
    int baud = 0; ///< of the line behind the connection
    Micros timeout = 0;
};

Link tcpLink(const TcpSettings& settings);
