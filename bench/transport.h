/// A wire with a scripted controller at its other end, which answers within the write of a request.
#ifndef KP410_BENCH_TRANSPORT_H
#define KP410_BENCH_TRANSPORT_H

#include <QByteArray>

/// Over a socket pair the controller's own read and write are system calls as well, the same for
/// all who use the wire. In memory there is none: the C library's functions are answered here.
enum Transport { OVER_SOCKET, IN_MEMORY };

/// Opens the wire, closing the one before. A request is answered by its function code.
/// @return the descriptor of the near end
int openWire(Transport transport, const QByteArray& toReads, const QByteArray& toWrites);

/// Sends a request and takes the reply. @return bytes of the reply
int exchange(const char* request, int length, char* reply, int capacity);

#endif
