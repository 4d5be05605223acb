#include "link_pty.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace plc
{
namespace
{
constexpr int CHUNK_BYTES = 4096;
constexpr int UNLOCK_INTERVAL_MS = 500;

QString lastError(const char* what)
{
    return QLatin1String(what) + QLatin1String(": ") + qt_error_string();
}

bool makeRaw(int terminal)
{
    termios settings = {};
    if (tcgetattr(terminal, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    return tcsetattr(terminal, TCSANOW, &settings) == 0;
}
} // namespace

PtyLink::PtyLink(Controller& controller)
    : m_session(controller, [this](const QByteArray& reply) { write(reply); })
{
}

PtyLink::~PtyLink()
{
    m_notifier.reset();
    if (!m_linkPath.isEmpty() && QFile::symLinkTarget(m_linkPath) == m_name)
        QFile::remove(m_linkPath);
    if (m_slave >= 0)
        ::close(m_slave);
    if (m_master >= 0)
        ::close(m_master);
}

QString PtyLink::open(const QString& linkPath)
{
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    std::array<char, 64> name = {};
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0 ||
        ptsname_r(m_master, name.data(), name.size()) != 0)
        return lastError("cannot create a pseudo-terminal");
    // Held open: with the last panel gone the terminal would report its hang-up without end.
    m_slave = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_slave < 0 || !makeRaw(m_slave))
        return lastError("cannot set up the pseudo-terminal");
    m_name = QFile::decodeName(name.data());

    if (!linkPath.isEmpty()) {
        if (QFileInfo(linkPath).isSymLink())
            QFile::remove(linkPath);
        if (!QFile::link(m_name, linkPath))
            return QLatin1String("cannot link ") + linkPath + QLatin1String(" to ") + m_name;
        m_linkPath = linkPath;
    }

    m_notifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { read(); });
    // A panel that was killed leaves its exclusive mode behind, since the terminal lives on.
    QObject::connect(&m_unlock, &QTimer::timeout, &m_unlock, [this] { ioctl(m_slave, TIOCNXCL); });
    m_unlock.start(UNLOCK_INTERVAL_MS);
    return {};
}

void PtyLink::read()
{
    char bytes[CHUNK_BYTES];
    const auto size = ::read(m_master, bytes, sizeof bytes);
    if (size > 0)
        m_session.receive(QByteArray(bytes, static_cast<int>(size)));
}

void PtyLink::write(const QByteArray& bytes) const
{
    // Like a serial line: what nobody takes off the full line is lost.
    [[maybe_unused]] const auto written =
        ::write(m_master, bytes.constData(), static_cast<size_t>(bytes.size()));
}
} // namespace plc
