#include "links.h"

#include <cstdio>
#include <utility>

namespace plc
{
namespace
{
QString bracketed(const QString& host)
{
    return host.contains(QLatin1Char(':')) ? QLatin1Char('[') + host + QLatin1Char(']') : host;
}
} // namespace

Links::Links(Controller& controller, std::function<void(const QString&)> lost)
    : m_pty(controller), m_tcp(controller), m_serial(controller, std::move(lost))
{
}

QString Links::open(const Options& options)
{
    if (options.pty) {
        const QString error = m_pty.open(options.linkPath);
        if (!error.isEmpty())
            return error;
        std::printf("pty %s\n", qUtf8Printable(m_pty.name()));
    }
    if (!options.tcpHost.isEmpty()) {
        const QString error = m_tcp.open(options.tcpHost, options.tcpPort);
        if (!error.isEmpty())
            return error;
        std::printf("tcp %s:%d\n", qUtf8Printable(bracketed(options.tcpHost)), int{m_tcp.port()});
    }
    if (!options.serial.device.isEmpty()) {
        const QString error = m_serial.open(options.serial);
        if (!error.isEmpty())
            return error;
        std::printf("serial %s\n", qUtf8Printable(options.serial.device));
    }
    std::fflush(stdout);
    return {};
}
} // namespace plc
