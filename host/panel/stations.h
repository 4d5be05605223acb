// Which stations are asked. One that has stopped answering costs a time-out and more whenever its
// turn comes, so it is switched off and probed from time to time. Time is an argument.
#pragma once

#include "timing.h"

constexpr Micros FIRST_PROBE = MICROS_PER_SECOND / 2;
constexpr Micros LONGEST_PROBE = 10 * MICROS_PER_SECOND;

enum class StationMode {
    On,
    Dead,     ///< switched off, waits for its next probe
    Probing,  ///< switched on for one request, which is not repeated
    OffByHand ///< switched off by a person, never probed
};

struct StationWatch {
    StationMode mode = StationMode::On;
    int givenUp = 0;            ///< variables in a row, without an answer in between
    Micros silentSince = NEVER; ///< the first request without an answer
    Micros probeAt = 0, backOff = 0;
};

/// What is to be done with the driver's station switch.
enum class Switch { Keep, Off, On };

/// Anything that came from the station, be it an exception, shows that it is there.
void noteAnswer(StationWatch* station);

void noteSilence(StationWatch* station, Micros askedAt);

/// A variable was given up for want of an answer. @param patience so many in a row end it
Switch noteGivenUp(StationWatch* station, int patience, Micros now);

/// Begins the probe of a dead station when its time has come.
Switch probeWhenDue(StationWatch* station, Micros now);

/// What a person at the keys does: off, and on again.
Switch toggleByHand(StationWatch* station);
