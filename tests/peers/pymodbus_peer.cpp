// pymodbus' asynchronous TCP server with RTU framing, in a process of its own.
#include "peer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <memory>

namespace
{

struct Server {
    QProcess process;

    Server()
    {
        process.start(QStringLiteral(PYTHON3), {QStringLiteral(SERVER), QString::number(STATION)});
    }
    ~Server()
    {
        process.closeWriteChannel();
        process.waitForFinished(PATIENCE_MS);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    QByteArray line()
    {
        while (!process.canReadLine())
            if (!process.waitForReadyRead(PATIENCE_MS))
                qFatal("no line from " SERVER ": %s", process.readAllStandardError().constData());
        return process.readLine().trimmed();
    }
};

QJsonArray arrayOf(const QVector<int>& values)
{
    QJsonArray array;
    for (const int value : values)
        array << value;
    return array;
}

QVector<int> valuesOf(const QJsonValue& array)
{
    QVector<int> values;
    for (const QJsonValue value : array.toArray())
        values << value.toInt();
    return values;
}

Served replaceImage(Server* server, const Image& image)
{
    QJsonObject request;
    for (auto area = image.begin(); area != image.end(); ++area)
        request[area.key()] = arrayOf(area.value());
    server->process.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    const QJsonObject answer = QJsonDocument::fromJson(server->line()).object();
    Served served;
    for (const QString& area : image.keys())
        served.held[area] = valuesOf(answer[area]);
    served.codes = valuesOf(answer[QLatin1String("codes")]);
    return served;
}

} // namespace

Peer startPeer()
{
    const auto server = std::make_shared<Server>();
    return {{QStringLiteral("--tcp"),
             QStringLiteral("127.0.0.1:") + QString::fromLatin1(server->line())},
            [server](const Image& image) { return replaceImage(server.get(), image); }};
}
