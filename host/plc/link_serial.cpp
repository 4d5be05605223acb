#include "link_serial.h"

#include <utility>

namespace plc
{
namespace
{
/// A line that is this far behind is not taking bytes.
constexpr qint64 MAX_UNSENT_BYTES = 64 * 1024;

bool isLoss(QSerialPort::SerialPortError error)
{
    return error == QSerialPort::ResourceError || error == QSerialPort::ReadError ||
           error == QSerialPort::WriteError;
}
} // namespace

SerialLink::SerialLink(Controller& controller, std::function<void(const QString&)> lost)
    : m_session(controller, [this](const QByteArray& bytes) { write(bytes); }),
      m_lost(std::move(lost))
{
}

QString SerialLink::open(const SerialSettings& settings)
{
    m_port.setPortName(settings.device);
    if (!openSerialLine(&m_port, settings))
        return QLatin1String("cannot open ") + settings.device + QLatin1String(": ") +
               m_port.errorString();
    QObject::connect(&m_port, &QSerialPort::readyRead, &m_port,
                     [this] { m_session.receive(m_port.readAll()); });
    // One loss is reported more than once, with reasons of the system's that say nothing.
    QObject::connect(&m_port, &QSerialPort::errorOccurred, &m_port,
                     [this, device = settings.device](QSerialPort::SerialPortError error) {
                         if (!isLoss(error))
                             return;
                         m_port.disconnect();
                         m_lost(device + QLatin1String(" is lost"));
                     });
    return {};
}

void SerialLink::write(const QByteArray& bytes)
{
    if (m_port.bytesToWrite() <= MAX_UNSENT_BYTES)
        m_port.write(bytes);
}
} // namespace plc
