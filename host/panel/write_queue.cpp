#include "write_queue.h"

namespace
{

/// Entries that the driver may make of a write: no piece is shorter than an element.
int mostPieces(const Tag& tag)
{
    return tag.length;
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
    for (Write& write : panel->writes) {
        if (write.state != WriteState::Waiting || write.due > now)
            continue;
        // In order: a later write to the same tag must not overtake this one.
        if (queueLengths(*panel).writes + mostPieces(panel->tags[write.tag]) > LIST_LIMIT)
            return;
        queueWrite(panel, &write, now);
    }
}
