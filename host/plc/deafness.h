// The deafness that a signal brings on, with its words on standard error.
#ifndef PLC_DEAFNESS_H
#define PLC_DEAFNESS_H

#include "controller.h"

#include <QTimer>

namespace plc
{
/// Restarted by every signal: the last one decides when the controller hears again.
class Deafness
{
public:
    /// @param lengthMs how long each one lasts
    Deafness(Controller& controller, int lengthMs);
    void begin();

private:
    Controller& m_controller;
    int m_lengthMs;
    qint64 m_swallowedBefore = 0;
    QTimer m_end;
};
} // namespace plc

#endif
