#include "write_queue.h"

#include <QMutexLocker>
#include <QSet>

namespace
{

/// Entries that the driver may make of a write: no piece is shorter than a byte.
int mostPieces(const Tag& tag)
{
    return valueBytes(tag);
}

int driverWrites(const Panel& panel)
{
    const QMutexLocker lock(&panel.driver.state->listMutex);
    return panel.driver.state->writeList.size();
}

/// Stations that take no write now: one that is off, and one whose last write has not ended. The
/// driver moves entries of a station that is off behind others and replaces a waiting write by a
/// newer one, so that several would lose their order or each other.
QSet<int> busyStations(const Panel& panel)
{
    QSet<int> busy;
    for (auto it = panel.stations.begin(); it != panel.stations.end(); ++it)
        if (it->mode != StationMode::On)
            busy << it.key();
    for (const Write& write : panel.writes)
        if (write.state == WriteState::Queued)
            busy << panel.tags[write.tag].station;
    return busy;
}

void queueWrite(Panel* panel, Write* write, Micros now)
{
    const Tag& tag = panel->tags[write->tag];
    QString label = tag.name, address = tag.addressText;
    QByteArray value = write->value;
    const int queued = panel->driver.setRegisterData(
        &label, tag.type, &address, tag.station, &value, tag.length, write->hostKey, write->tag);
    write->state = queued > 0 ? WriteState::Queued : WriteState::Refused;
    write->queuedAt = now;
    note(panel,
         QStringLiteral("write %1 %2")
             .arg(writeText(*write, panel->tags), QLatin1String(writeStateText(write->state))));
}

} // namespace

void queueDueWrites(Panel* panel)
{
    const Micros now = panel->clock();
    QSet<int> busy = busyStations(*panel);
    for (Write& write : panel->writes) {
        if (write.state != WriteState::Waiting || write.due > now)
            continue;
        const Tag& tag = panel->tags[write.tag];
        if (busy.contains(tag.station))
            continue;
        busy << tag.station;
        if (driverWrites(*panel) + mostPieces(tag) <= LIST_LIMIT)
            queueWrite(panel, &write, now);
    }
}
