// One stream of request bytes, a terminal or a TCP client, served by the controller.
#ifndef PLC_SESSION_H
#define PLC_SESSION_H

#include "controller.h"

#include <QTimer>

#include <functional>

namespace plc
{
qint64 steadyMs(); ///< a clock that no one sets

class Session
{
public:
    Session(Controller& controller, std::function<void(const QByteArray&)> send);
    void receive(const QByteArray& bytes);

private:
    void serveAll(const QList<QByteArray>& frames);

    Controller& m_controller;
    std::function<void(const QByteArray&)> m_send;
    Framer m_framer;
    QTimer m_silence;
};
} // namespace plc

#endif
