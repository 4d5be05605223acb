#include "station_switch.h"

namespace
{

enum { STATION_OFF = 0, STATION_ON = 1 }; // the second argument of EnCommStation

void apply(Panel* panel, int station, Switch change)
{
    if (change != Switch::Keep)
        panel->driver.enCommStation(station, change == Switch::On ? STATION_ON : STATION_OFF);
}

/// One answer makes one block fresh, not the station's other tags.
void doubtTagsOf(Panel* panel, int station)
{
    const Micros now = panel->clock();
    for (int i = 0; i < panel->tags.size(); ++i)
        if (panel->tags[i].station == station)
            panel->states[i].doubtedAt = now;
    panel->statistics.stations[station].lastRead.clear();
}

} // namespace

void watchAnswer(Panel* panel, int station, bool answered, Micros askedAt)
{
    StationWatch& watch = panel->stations[station];
    const Micros since = watch.silentSince;
    if (!answered) {
        noteSilence(&watch, askedAt);
        if (since == NEVER)
            note(panel, QStringLiteral("station %1 does not answer").arg(station));
        return;
    }
    const bool missedTurns = watch.givenUp > 0;
    noteAnswer(&watch);
    if (since == NEVER)
        return;
    if (missedTurns)
        doubtTagsOf(panel, station);
    note(panel, QStringLiteral("station %1 answers again after %2 s")
                    .arg(station)
                    .arg(secondsText(panel->clock() - since)));
}

void watchGivenUp(Panel* panel, int station)
{
    StationWatch& watch = panel->stations[station];
    const bool firstTime = watch.mode == StationMode::On;
    const Switch change = noteGivenUp(&watch, panel->patience, panel->clock());
    apply(panel, station, change);
    if (change == Switch::Off && firstTime)
        note(panel, QStringLiteral("station %1 switched off, probed again in %2 s")
                        .arg(station)
                        .arg(secondsText(watch.backOff)));
}

void probeStations(Panel* panel)
{
    const Micros now = panel->clock();
    for (auto it = panel->stations.begin(); it != panel->stations.end(); ++it)
        apply(panel, it.key(), probeWhenDue(&it.value(), now));
}

QString toggleStation(Panel* panel, int station)
{
    const auto watch = panel->stations.find(station);
    if (watch == panel->stations.end())
        return QStringLiteral("no tag has the station %1").arg(station);
    const Switch change = toggleByHand(&*watch);
    apply(panel, station, change);
    doubtTagsOf(panel, station);
    note(panel, QStringLiteral("station %1 switched %2 by hand")
                    .arg(station)
                    .arg(change == Switch::On ? QStringLiteral("on") : QStringLiteral("off")));
    return QString();
}

int retriesFor(const Panel& panel, int station)
{
    const bool probing = panel.stations.value(station).mode == StationMode::Probing;
    return probing ? 0 : panel.retries;
}
