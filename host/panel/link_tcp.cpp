#include "link_tcp.h"

#include <QTcpSocket>

#include <algorithm>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace
{

constexpr int CONNECT_MS = 3000;
constexpr int DEAD_PEER_MS = 10000;

/// A peer that has lost its power or its cable says nothing; left alone, the system notices after a
/// quarter of an hour.
void noticeDeadPeer(const QTcpSocket& socket)
{
    setsockopt(static_cast<int>(socket.socketDescriptor()), IPPROTO_TCP, TCP_USER_TIMEOUT,
               &DEAD_PEER_MS, sizeof DEAD_PEER_MS);
}

std::unique_ptr<QIODevice> openTcp(const TcpSettings& settings, QString* error)
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(settings.host, settings.port);
    if (!socket->waitForConnected(CONNECT_MS)) {
        *error = socket->errorString();
        return nullptr;
    }
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    noticeDeadPeer(*socket);
    return socket;
}

bool tcpLost(const QIODevice& device)
{
    return static_cast<const QTcpSocket&>(device).state() != QAbstractSocket::ConnectedState;
}

} // namespace

Link tcpLink(const TcpSettings& settings)
{
    Link link;
    link.name = QStringLiteral("%1:%2").arg(settings.host).arg(settings.port);
    link.baud = settings.baud;
    link.open = [settings](QString* error) { return openTcp(settings, error); };
    link.lost = tcpLost;
    link.gap = std::max(USB_GAP, settings.timeout / 2); // networks pause where lines do not
    link.lossText = [](const QIODevice& device) { return device.errorString(); };
    return link;
}
