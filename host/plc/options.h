#ifndef PLC_OPTIONS_H
#define PLC_OPTIONS_H

#include <QList>
#include <QString>
#include <QStringList>

namespace plc
{
struct Options {
    QList<int> stations = {};
    bool remote = false;
    bool pty = false;
    QString linkPath = {};
    QString tcpHost = {}; ///< empty: no TCP
    quint16 tcpPort = 0;
    int deafMs = 0;
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
