// A serial device, or a pseudo-terminal in its place.
#pragma once

#include "../serial_line.h"
#include "link.h"

Link serialLink(const SerialSettings& settings);
