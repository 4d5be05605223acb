// A TCP server that speaks the bytes of the serial line, to any number of clients.
#ifndef PLC_LINK_TCP_H
#define PLC_LINK_TCP_H

#include "session.h"

#include <QTcpServer>

namespace plc
{
class TcpLink
{
public:
    explicit TcpLink(Controller& controller);
    /// @param port 0 picks a free one. @return what went wrong; empty when nothing did
    QString open(const QString& host, quint16 port);
    quint16 port() const { return m_server.serverPort(); }

private:
    void accept();

    Controller& m_controller;
    QTcpServer m_server;
};
} // namespace plc

#endif
