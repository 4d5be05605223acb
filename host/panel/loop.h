// The runtime's loop: ask the driver for a frame, exchange it, hand the reply back, and note what
// came of it.
#pragma once

#include "panel.h"

/// Hands the settings, callbacks and tags to the driver. @return what is wrong, empty when nothing
QString startPanel(Panel* panel);

/// One turn: at most one request and its reply. Sleeps a little when there is nothing to do.
void turn(Panel* panel);
