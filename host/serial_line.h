// A serial device as both programs open it.
#pragma once

#include <QString>

class QSerialPort;

struct SerialSettings {
    QString device = {}; ///< empty: none
    int baud = 0;
    char parity = 'E'; ///< 'N', 'E' or 'O'
    int stopBits = 1;
};

/// Opens the port, whose name is set, with eight data bits; of a pseudo-terminal there is no line
/// to set up. @return false when the port's error says why
bool openSerialLine(QSerialPort* port, const SerialSettings& settings);
