// A serial device, or a pseudo-terminal in its place.
#pragma once

#include "link.h"

struct SerialSettings {
    QString device;
    int baud = 0;
    char parity = 'E'; ///< 'N', 'E' or 'O'
    int stopBits = 1;
};

Link serialLink(const SerialSettings& settings);
