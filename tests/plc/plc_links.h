// Who asks the program, at the other ends of its links.
#ifndef TESTS_PLC_LINKS_H
#define TESTS_PLC_LINKS_H

#include "plc_process.h"

#include <QTcpSocket>
#include <QUrl>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <modbus.h>
#include <poll.h>
#include <unistd.h>

constexpr unsigned REPLY_TIMEOUT_US = 300 * 1000;
using Master = std::unique_ptr<modbus_t, decltype(&modbus_free)>;

inline Master connectMaster(const QByteArray& terminal, int station)
{
    Master master(modbus_new_rtu(terminal.constData(), 115200, 'N', 8, 1), &modbus_free);
    modbus_set_slave(master.get(), station);
    modbus_set_response_timeout(master.get(), 0, REPLY_TIMEOUT_US);
    if (modbus_connect(master.get()) != 0)
        qFatal("cannot open %s: %s", terminal.constData(), modbus_strerror(errno));
    return master;
}

/// The word at `address`, or -errno.
inline int readWord(const Master& master, int address)
{
    uint16_t value = 0;
    return modbus_read_registers(master.get(), address, 1, &value) == 1 ? value : -errno;
}

/// The side of a pseudo-terminal that the program does not hold.
class Terminal
{
public:
    Terminal() : m_descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (grantpt(m_descriptor) != 0 || unlockpt(m_descriptor) != 0)
            qFatal("cannot create a pseudo-terminal");
    }
    ~Terminal() { ::close(m_descriptor); }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    QByteArray name() const
    {
        std::array<char, 64> name = {};
        return ptsname_r(m_descriptor, name.data(), name.size()) == 0 ? name.data() : "";
    }
    void write(const QByteArray& request) const
    {
        if (::write(m_descriptor, request.constData(), size_t(request.size())) != request.size())
            qFatal("cannot write to the pseudo-terminal");
    }
    /// In hexadecimal; what comes within WAIT_MS, up to `count` bytes.
    QByteArray read(int count) const
    {
        QByteArray taken;
        pollfd ready = {m_descriptor, POLLIN, 0};
        char byte = 0;
        while (taken.size() < count && ::poll(&ready, 1, WAIT_MS) == 1 &&
               ::read(m_descriptor, &byte, 1) == 1)
            taken += byte;
        return taken.toHex(' ');
    }

private:
    int m_descriptor;
};

/// A client of the program's TCP link.
class Client
{
public:
    explicit Client(const QByteArray& announced)
    {
        const QUrl address(QLatin1String("//") + QString::fromLatin1(announced));
        m_socket.connectToHost(address.host(), static_cast<quint16>(address.port()));
        m_socket.waitForConnected(WAIT_MS);
    }
    void ask(const QByteArray& request)
    {
        m_socket.write(request);
        m_socket.waitForBytesWritten(WAIT_MS);
    }
    /// In hexadecimal; what comes within WAIT_MS after the byte before, up to `count` bytes.
    QByteArray take(int count)
    {
        while (m_socket.bytesAvailable() < count && m_socket.waitForReadyRead(WAIT_MS))
            ;
        return m_socket.read(count).toHex(' ');
    }
    /// Throws away what comes. @return false after a silence of that long
    bool isHeard(int silenceMs)
    {
        m_socket.readAll();
        return m_socket.waitForReadyRead(silenceMs);
    }

private:
    QTcpSocket m_socket;
};

#endif
