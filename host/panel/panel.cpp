#include "panel.h"

#include <QMutexLocker>

namespace
{

Presence presenceOf(const Panel& panel, int station)
{
    const StationWatch watch = panel.stations.value(station);
    if (watch.mode == StationMode::OffByHand)
        return Presence::Off;
    const bool silent = !panel.link.device || watch.silentSince != NEVER;
    return silent ? Presence::Silent : Presence::Present;
}

} // namespace

void note(Panel* panel, const QString& text)
{
    panel->events << Event{panel->clock(), text};
}

QString secondsText(Micros time)
{
    return QString::number(static_cast<double>(time) / MICROS_PER_SECOND, 'f', 2);
}

Quality qualityAt(const Panel& panel, int tag, Micros now)
{
    return qualityOf(panel.states[tag], presenceOf(panel, panel.tags[tag].station), now,
                     panel.timeout);
}

Queues queueLengths(const Panel& panel)
{
    Communication_Protocol* driver = panel.driver.state;
    const QMutexLocker lock(&driver->listMutex);
    return {driver->writeList.size(), driver->onceReadList.size(), driver->readList.size()};
}
