// A serial port with a panel at the other end of the cable.
#ifndef PLC_LINK_SERIAL_H
#define PLC_LINK_SERIAL_H

#include "../serial_line.h"
#include "session.h"

#include <QSerialPort>

namespace plc
{
class SerialLink
{
public:
    /// @param lost called once, with the reason, when the port is gone after it was opened
    SerialLink(Controller& controller, std::function<void(const QString&)> lost);
    /// @return what went wrong; empty when nothing did
    QString open(const SerialSettings& settings);

private:
    void write(const QByteArray& bytes);

    QSerialPort m_port;
    Session m_session;
    std::function<void(const QString&)> m_lost;
};
} // namespace plc

#endif
