// Stations watched and switched off and on in the driver, with a note of each change.
#pragma once

#include "panel.h"

/// Takes what an exchange showed of its station.
void watchAnswer(Panel* panel, int station, bool answered, Micros askedAt);

/// Takes that the driver gave a variable up whose last request got no answer.
void watchGivenUp(Panel* panel, int station);

/// Switches on the dead stations whose probe is due.
void probeStations(Panel* panel);

/// Switches a station off or on again, as a person asks. @return what is wrong, empty when nothing
QString toggleStation(Panel* panel, int station);

/// How often a request to the station may be repeated: a probe is not.
int retriesFor(const Panel& panel, int station);
