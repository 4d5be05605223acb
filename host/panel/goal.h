// When a run is over, and how well it went.
#pragma once

#include "panel.h"

struct Goal {
    Micros duration = 0;  ///< 0: until interrupted
    bool once = false;    ///< over when every tag was read, or could not be
    bool written = false; ///< over when every write has ended
};

enum ExitStatus {
    EXIT_WELL = 0,
    EXIT_USAGE = 1,        ///< also: a file or the library could not be used
    EXIT_WRITE_FAILED = 2, ///< a write was not done, or read back differently
    EXIT_NOT_FRESH = 3,    ///< a tag had no fresh value
    EXIT_LINK_DOWN = 4
};

bool goalReached(const Panel& panel, const Goal& goal, Micros now);

ExitStatus exitStatus(const Panel& panel, const Goal& goal, Micros now);
