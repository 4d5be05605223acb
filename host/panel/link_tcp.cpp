#include "link_tcp.h"

#include <QTcpSocket>

namespace
{

std::unique_ptr<QIODevice> openTcp(const TcpSettings& settings, QString* error)
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(settings.host, settings.port);
    if (!socket->waitForConnected(static_cast<int>(settings.timeout / MICROS_PER_MILLI))) {
        *error = socket->errorString();
        return nullptr;
    }
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
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
    return link;
}
