// The command line.
#pragma once

#include "timing.h"

#include <QStringList>

struct Options {
    QString tagFile, library, summaryFile;
    QString serialDevice, tcpHost;
    quint16 tcpPort = 0;
    int baud = 0, stopBits = 0;
    char parity = 'E';
    Micros timeout = 0, delay = 0;
    Micros duration = 0; ///< 0: until interrupted
    int retries = 0, block = 0;
    bool remote = false;
    QStringList writes, timedWrites;
};

/// Ends the program itself for --help, --version and options it does not know.
/// @return what is wrong, empty when nothing
QString parseOptions(const QStringList& arguments, Options* options);
