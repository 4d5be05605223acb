#include "panel.h"

#include <QMutexLocker>

#include <algorithm>

namespace
{

constexpr Micros OLDEST_GOOD = 5 * MICROS_PER_SECOND;
constexpr Micros SCANS_GOOD = 3; // on a line so slow that a scan takes longer than that

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

QString millisText(Micros time)
{
    return QString::number(static_cast<double>(time) / MICROS_PER_MILLI, 'f', 1);
}

Quality qualityAt(const Panel& panel, int tag, Micros now)
{
    const int station = panel.tags[tag].station;
    // By reference: the counters of a station are a large record, and this runs for each tag.
    const auto counters = panel.statistics.stations.constFind(station);
    const Micros lastScan =
        counters == panel.statistics.stations.constEnd() ? NEVER : counters->lastScan;
    const QualityLimits limits = {panel.timeout, std::max(OLDEST_GOOD, SCANS_GOOD * lastScan)};
    return qualityOf(panel.states[tag], presenceOf(panel, station), now, limits);
}

Queues queueLengths(const Panel& panel)
{
    const Micros now = panel.clock();
    const auto isDue = [now](const Write& write) {
        return write.state == WriteState::Waiting && write.due <= now;
    };
    const auto waiting =
        static_cast<int>(std::count_if(panel.writes.begin(), panel.writes.end(), isDue));
    Communication_Protocol* driver = panel.driver.state;
    const QMutexLocker lock(&driver->listMutex);
    return {driver->writeList.size() + waiting, driver->onceReadList.size()};
}
