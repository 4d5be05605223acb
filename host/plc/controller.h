// The stations on one line, and what is counted about them. Time is an argument throughout.
#ifndef PLC_CONTROLLER_H
#define PLC_CONTROLLER_H

#include "../remote_layout.h"
#include "answer.h"
#include "fault_effect.h"
#include "framer.h"
#include "local.h"
#include "machine.h"
#include "remote.h"

#include <QMap>

#include <limits>

namespace plc
{
struct Framing {
    FrameLength frameLength;
    int stationOffset;
    Request (*parse)(const QByteArray& frame, const Memory& memory);
};
inline constexpr Framing LOCAL_FRAMING = {localFrameLength, LOCAL_STATION_OFFSET, parseLocal};
inline constexpr Framing REMOTE_FRAMING = {remoteFrameLength, remote_layout::STATION_OFFSET,
                                           parseRemote};

inline constexpr int BROADCAST_STATION = 0;

inline constexpr qint64 FOREVER_MS = std::numeric_limits<qint64>::max();

struct Station {
    Memory memory;
    Machine machine;
    qint64 deadUntilMs = 0;
};

/// Requests for a station that is not here are none of ours and are not counted.
struct Counters {
    qint64 requests = 0;
    qint64 replies = 0;    ///< sent, exceptions and spoilt ones included
    qint64 exceptions = 0; ///< requests refused, whether the refusal was sent or not
    qint64 swallowed = 0;  ///< came while deaf, busy, babbling or dead; not among `requests`
};

struct Controller {
    Framing framing;
    QMap<int, Station> stations;
    bool machines = true;
    Counters counters = {};
    qint64 deafUntilMs = 0;
    FaultPlan faults = {};
};

/// What is kept of one link.
struct Line {
    QByteArray lastReply = {}; ///< as built for the request before, whatever became of it
    qint64 busyUntilMs = 0;    ///< until then the link hears nothing
};

/// @param machines lets a machine run in each station; without, all memory is 0
Controller makeController(const QList<int>& stations, const Framing& framing, bool machines = true);
/// Carries out one checked request, as far as the faults planned let it. Broadcasts are neither
/// counted nor hit by faults, but miss what is dead. @return what goes out, nothing where nobody
/// heard it
Sending serve(Controller& controller, Line& line, const QByteArray& frame, qint64 nowMs);
/// Does nothing without machines.
void runMachines(Controller& controller, qint64 elapsedMs);
} // namespace plc

#endif
