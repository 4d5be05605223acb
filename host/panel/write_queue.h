// Writes handed to the driver when they are due and it has room: a full list drops without a sign.
#pragma once

#include "panel.h"

void queueDueWrites(Panel* panel);
