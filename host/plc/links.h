// All the links that one run of the program serves.
#ifndef PLC_LINKS_H
#define PLC_LINKS_H

#include "link_pty.h"
#include "link_serial.h"
#include "link_tcp.h"
#include "options.h"

namespace plc
{
class Links
{
public:
    /// @param lost as for SerialLink
    Links(Controller& controller, std::function<void(const QString&)> lost);
    /// Opens the links asked for and announces each on standard output. @return what went wrong;
    /// empty when nothing did
    QString open(const Options& options);

private:
    PtyLink m_pty;
    TcpLink m_tcp;
    SerialLink m_serial;
};
} // namespace plc

#endif
