#include "deafness.h"

#include "report.h"
#include "session.h"

namespace plc
{
Deafness::Deafness(Controller& controller, int lengthMs)
    : m_controller(controller), m_lengthMs(lengthMs)
{
    m_end.setSingleShot(true);
    m_end.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_end, &QTimer::timeout, &m_end, [this] {
        report(QStringLiteral("hears again, %1 requests swallowed")
                   .arg(m_controller.counters.swallowed - m_swallowedBefore));
    });
}

void Deafness::begin()
{
    m_controller.deafUntilMs = steadyMs() + m_lengthMs;
    m_swallowedBefore = m_controller.counters.swallowed;
    m_end.start(m_lengthMs);
    report(QStringLiteral("deaf for %1 ms").arg(m_lengthMs));
}
} // namespace plc
