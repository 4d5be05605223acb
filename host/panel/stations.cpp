#include "stations.h"

#include <algorithm>

void noteAnswer(StationWatch* station)
{
    station->givenUp = 0;
    station->silentSince = NEVER;
    // A reply to a frame built before the station was switched off by hand leaves it off.
    if (station->mode != StationMode::Probing)
        return;
    station->mode = StationMode::On;
    station->backOff = 0;
}

void noteSilence(StationWatch* station, Micros askedAt)
{
    if (station->silentSince == NEVER)
        station->silentSince = askedAt;
}

Switch noteGivenUp(StationWatch* station, int patience, Micros now)
{
    ++station->givenUp;
    const bool probing = station->mode == StationMode::Probing;
    if (!probing && (station->mode != StationMode::On || station->givenUp < patience))
        return Switch::Keep;
    station->mode = StationMode::Dead;
    station->backOff = std::clamp(2 * station->backOff, FIRST_PROBE, LONGEST_PROBE);
    station->probeAt = now + station->backOff;
    return Switch::Off;
}

Switch probeWhenDue(StationWatch* station, Micros now)
{
    if (station->mode != StationMode::Dead || now < station->probeAt)
        return Switch::Keep;
    station->mode = StationMode::Probing;
    return Switch::On;
}

Switch toggleByHand(StationWatch* station)
{
    if (station->mode == StationMode::OffByHand) {
        *station = StationWatch();
        return Switch::On;
    }
    station->mode = StationMode::OffByHand;
    return Switch::Off;
}
