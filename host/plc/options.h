// The command line.
#ifndef PLC_OPTIONS_H
#define PLC_OPTIONS_H

#include "fault.h"
#include "link_serial.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace plc
{
struct Options {
    QList<int> stations = {};
    bool remote = false;
    bool machine = true;
    bool pty = false;
    QString linkPath = {};
    QString tcpHost = {}; ///< empty: no TCP
    quint16 tcpPort = 0;
    SerialSettings serial = {};
    int deafMs = 0;
    QString loadPath = {}; ///< empty: nothing to load
    QString savePath = {}; ///< empty: nothing to save
    QList<Fault> faults = {};
    quint32 seed = 0;
};

/// Either `help`, or what is wrong in `error`, or good options.
struct ParsedOptions {
    Options options = {};
    QString help = {};
    QString error = {};
};

/// @param arguments the program's name first
ParsedOptions parseOptions(const QStringList& arguments);
} // namespace plc

#endif
