#include "serial_line.h"

#include <QFileInfo>
#include <QSerialPort>

namespace
{

QSerialPort::Parity parityOf(char letter)
{
    switch (letter) {
    case 'N':
        return QSerialPort::NoParity;
    case 'O':
        return QSerialPort::OddParity;
    default:
        return QSerialPort::EvenParity;
    }
}

// A pseudo-terminal has no line to set up, and the C library reports a refused parity as an error.
bool isPseudoTerminal(const QString& device)
{
    return QFileInfo(device).canonicalFilePath().startsWith(QLatin1String("/dev/pts/"));
}

bool setLine(QSerialPort* port, const SerialSettings& settings)
{
    return port->setBaudRate(settings.baud) && port->setDataBits(QSerialPort::Data8) &&
           port->setParity(parityOf(settings.parity)) &&
           port->setStopBits(settings.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
}

} // namespace

bool openSerialLine(QSerialPort* port, const SerialSettings& settings)
{
    return port->open(QIODevice::ReadWrite) &&
           (isPseudoTerminal(settings.device) || setLine(port, settings));
}
