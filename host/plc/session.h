// One stream of request bytes, a terminal or a TCP client, served by the controller.
#ifndef PLC_SESSION_H
#define PLC_SESSION_H

#include "controller.h"

#include <QTimer>

#include <functional>

namespace plc
{
qint64 steadyMs(); ///< a clock that no one sets

/// Replies that are still to come are not sent any more once it is gone.
class Session
{
public:
    /// @param send called from the event loop with bytes to send at once
    Session(Controller& controller, std::function<void(const QByteArray&)> send);
    void receive(const QByteArray& bytes);

private:
    void serveAll(const QList<QByteArray>& frames);
    void sendAll(const Sending& sending);
    void beginBabble(int lengthMs);

    Controller& m_controller;
    std::function<void(const QByteArray&)> m_send;
    Framer m_framer;
    Line m_line;
    QTimer m_silence;
    QTimer m_babble;
    qint64 m_babbleEndsMs = 0;
    Generator m_noise; ///< its own: how much babble comes depends on the clock
};
} // namespace plc

#endif
