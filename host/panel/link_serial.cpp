#include "link_serial.h"

#include <QFileInfo>
#include <QSerialPort>

namespace
{

/// A bare name is one of a device; anything else, or what is here under that name, is a path.
QString devicePath(const QString& device)
{
    const bool bare = !device.contains(QLatin1Char('/')) && !QFile::exists(device);
    return bare ? device : QFileInfo(device).absoluteFilePath();
}

std::unique_ptr<QIODevice> openSerial(const SerialSettings& settings, QString* error)
{
    auto port = std::make_unique<QSerialPort>(devicePath(settings.device));
    if (openSerialLine(port.get(), settings))
        return port;
    *error = port->errorString();
    return nullptr;
}

bool serialLost(const QIODevice& device)
{
    switch (static_cast<const QSerialPort&>(device).error()) {
    case QSerialPort::ResourceError:
    case QSerialPort::ReadError:
    case QSerialPort::WriteError:
    case QSerialPort::NotOpenError:
        return true;
    default:
        return false;
    }
}

QString serialLossText(const QIODevice& device)
{
    const auto& port = static_cast<const QSerialPort&>(device);
    return QFile::exists(port.portName()) || QFile::exists(QLatin1String("/dev/") + port.portName())
               ? port.errorString()
               : QStringLiteral("the device is gone");
}

} // namespace

Link serialLink(const SerialSettings& settings)
{
    Link link;
    link.name = settings.device;
    link.baud = settings.baud;
    link.open = [settings](QString* error) { return openSerial(settings, error); };
    link.lost = serialLost;
    link.lossText = serialLossText;
    return link;
}
