#include "link_tcp.h"

#include <QHostInfo>
#include <QTcpSocket>

#include <memory>

namespace plc
{
namespace
{
constexpr int CHUNK_BYTES = 4096;
/// A client that leaves this many reply bytes unread has stopped reading.
constexpr qint64 MAX_UNSENT_BYTES = 64 * 1024;

void sendTo(QTcpSocket* client, const QByteArray& reply)
{
    if (client->isOpen() && client->bytesToWrite() <= MAX_UNSENT_BYTES)
        client->write(reply);
}

void readFrom(QTcpSocket* client, Session& session)
{
    while (client->bytesAvailable() > 0)
        session.receive(client->read(CHUNK_BYTES));
}
} // namespace

TcpLink::TcpLink(Controller& controller) : m_controller(controller)
{
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { accept(); });
}

QString TcpLink::open(const QString& host, quint16 port)
{
    const QHostInfo info = QHostInfo::fromName(host);
    if (info.addresses().isEmpty())
        return QLatin1String("unknown host ") + host;
    if (!m_server.listen(info.addresses().constFirst(), port))
        return QLatin1String("cannot listen on ") + host + QLatin1String(": ") +
               m_server.errorString();
    return {};
}

void TcpLink::accept()
{
    while (QTcpSocket* client = m_server.nextPendingConnection()) {
        client->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        const auto session = std::make_shared<Session>(
            m_controller, [client](const QByteArray& reply) { sendTo(client, reply); });
        QObject::connect(client, &QTcpSocket::readyRead, client,
                         [client, session] { readFrom(client, *session); });
        QObject::connect(client, &QTcpSocket::disconnected, client, &QTcpSocket::deleteLater);
    }
}
} // namespace plc
