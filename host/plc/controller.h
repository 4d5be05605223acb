// The stations on one line, and what is counted about them. Time is an argument throughout.
#ifndef PLC_CONTROLLER_H
#define PLC_CONTROLLER_H

#include "answer.h"
#include "framer.h"
#include "local.h"
#include "machine.h"
#include "remote.h"

#include <QMap>

namespace plc
{
struct Framing {
    FrameLength frameLength;
    int stationOffset;
    Request (*parse)(const QByteArray& frame, const Memory& memory);
};
inline constexpr Framing LOCAL_FRAMING = {localFrameLength, LOCAL_STATION_OFFSET, parseLocal};
inline constexpr Framing REMOTE_FRAMING = {remoteFrameLength, REMOTE_STATION_OFFSET, parseRemote};

inline constexpr int BROADCAST_STATION = 0;

struct Station {
    Memory memory;
    Machine machine;
};

/// Requests for a station that is not here are none of ours and are not counted.
struct Counters {
    qint64 requests = 0;
    qint64 replies = 0;    ///< exceptions included
    qint64 exceptions = 0; ///< illegal requests, whether replied to or broadcast
    qint64 swallowed = 0;  ///< requests that came while deaf; not among `requests`
};

struct Controller {
    Framing framing;
    QMap<int, Station> stations;
    Counters counters = {};
    qint64 deafUntilMs = 0;
};

Controller makeController(const QList<int>& stations, const Framing& framing);
/// Carries out one checked request. @return the reply, empty when there is none
QByteArray serve(Controller& controller, const QByteArray& frame, qint64 nowMs);
void runMachines(Controller& controller, qint64 elapsedMs);
} // namespace plc

#endif
