#include "session.h"

#include <chrono>
#include <utility>

namespace plc
{
qint64 steadyMs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

Session::Session(Controller& controller, std::function<void(const QByteArray&)> send)
    : m_controller(controller), m_send(std::move(send))
{
    m_silence.setSingleShot(true);
    m_silence.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_silence, &QTimer::timeout, &m_silence, [this] {
        serveAll(takeSilence(m_framer, m_controller.framing.frameLength, steadyMs()));
    });
}

void Session::receive(const QByteArray& bytes)
{
    serveAll(takeBytes(m_framer, m_controller.framing.frameLength, bytes, steadyMs()));
    if (m_framer.pending.isEmpty())
        m_silence.stop();
    else
        m_silence.start(SILENT_GAP_MS + 1); // steadyMs() has dropped up to a millisecond
}

void Session::serveAll(const QList<QByteArray>& frames)
{
    for (const QByteArray& frame : frames) {
        const QByteArray reply = serve(m_controller, frame, steadyMs());
        if (!reply.isEmpty())
            m_send(reply);
    }
}
} // namespace plc
