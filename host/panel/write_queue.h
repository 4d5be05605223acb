// Writes handed to the driver when they are due, one at a time for each station, in the order in
// which they were asked for, and while it has room: a full list drops without a sign.
#pragma once

#include "panel.h"

void queueDueWrites(Panel* panel);
