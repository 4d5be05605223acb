// Commands of the person at the keys, applied.
#pragma once

#include "keys.h"
#include "panel.h"

/// Leaves what came of it in the keys' message. @return true when the run is to end
bool applyCommand(const Command& command, Keys* keys, Panel* panel);
