// What a run came to.
#pragma once

#include "loop.h"

enum ExitStatus { EXIT_WELL = 0, EXIT_USAGE = 1, EXIT_WRITE_FAILED = 2, EXIT_NOT_FRESH = 3 };

QStringList summary(const Panel& panel, Micros ran);
ExitStatus exitStatus(const Panel& panel, Micros now);
