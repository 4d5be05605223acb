// The command line.
#pragma once

#include "display.h"
#include "goal.h"
#include "link_serial.h"
#include "link_tcp.h"

#include <QStringList>

struct Options {
    QString tagFile, library, summaryFile, pcapFile;
    SerialSettings serial; ///< used unless a TCP host is given
    TcpSettings tcp;
    Micros timeout = 0, delay = 0;
    int retries = 0, block = 0, patience = 0;
    bool remote = false, echo = false, trace = false;
    QStringList writes, timedWrites;
    Output output = Output::Text;
    Goal goal;
};

/// Either `help`, or what is wrong in `errors`, or good options.
struct ParsedOptions {
    Options options;
    QString help;
    QStringList errors;
};

/// What the program's standard streams are.
struct Terminals {
    bool screen = false; ///< standard output and input: a picture can be drawn
    bool errors = false; ///< standard error: its lines would spoil the picture
};

/// @param arguments the program's name first
ParsedOptions parseOptions(const QStringList& arguments, const Terminals& terminals);
