#include "session.h"

#include <chrono>
#include <utility>

namespace plc
{
namespace
{
constexpr int BABBLE_INTERVAL_MS = 10;
constexpr int BABBLE_BYTES = 16; ///< about what 19,200 baud carry in that time
} // namespace

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
    QObject::connect(&m_babble, &QTimer::timeout, &m_babble, [this] {
        m_send(randomBytes(BABBLE_BYTES, m_noise));
        if (steadyMs() >= m_babbleEndsMs)
            m_babble.stop();
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
        const Sending sending = serve(m_controller, m_line, frame, steadyMs());
        sendAll(sending);
        if (sending.babble)
            beginBabble(sending.babbleMs);
    }
}

void Session::sendAll(const Sending& sending)
{
    if (!sending.echo.isEmpty())
        m_send(sending.echo);
    for (const TimedBytes& timed : schedule(sending)) {
        if (timed.atMs == 0)
            m_send(timed.bytes);
        else
            QTimer::singleShot(std::chrono::milliseconds(timed.atMs), Qt::PreciseTimer, &m_silence,
                               [this, bytes = timed.bytes] { m_send(bytes); });
    }
}

void Session::beginBabble(int lengthMs)
{
    m_babbleEndsMs = lengthMs == UNTIL_THE_END ? FOREVER_MS : steadyMs() + lengthMs;
    m_babble.start(BABBLE_INTERVAL_MS);
}
} // namespace plc
