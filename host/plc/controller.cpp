#include "controller.h"

#include "wire.h"

#include <algorithm>

namespace plc
{
namespace
{
bool isException(const QByteArray& reply)
{
    return (byteAt(reply, 1) & EXCEPTION_FLAG) != 0;
}

Request requestOf(const Framing& framing, const Station& station, const QByteArray& frame)
{
    return framing.parse(frame, station.memory);
}

void broadcast(Controller& controller, const QByteArray& frame, qint64 nowMs)
{
    bool illegal = false;
    for (auto it = controller.stations.begin(); it != controller.stations.end(); ++it) {
        if (nowMs < it->deadUntilMs)
            continue;
        const Request request = requestOf(controller.framing, *it, frame);
        illegal = isException(answer(it->memory, it.key(), request)) || illegal;
    }
    ++controller.counters.requests;
    controller.counters.exceptions += illegal ? 1 : 0;
}

const Fault* findFault(const QList<Fault>& faults, FaultKind kind)
{
    const auto found = std::find_if(faults.begin(), faults.end(),
                                    [kind](const Fault& fault) { return fault.kind == kind; });
    return found == faults.end() ? nullptr : &*found;
}

qint64 endOf(int lengthMs, qint64 nowMs)
{
    return lengthMs == UNTIL_THE_END ? FOREVER_MS : nowMs + lengthMs;
}

/// @return the reply before any fault spoils it; empty when the request is not even taken
QByteArray carryOut(const Framing& framing, int number, Station& station, const QByteArray& frame,
                    const QList<Fault>& faults)
{
    if (findFault(faults, FAULT_DEAD) != nullptr || findFault(faults, FAULT_IGNORE) != nullptr)
        return {};
    const Request request = requestOf(framing, station, frame);
    if (const Fault* refusal = findFault(faults, FAULT_EXCEPTION))
        return exceptionReply(number, request.function, refusal->parameter);
    return answer(station.memory, number, request);
}

qint64 busyUntil(const Sending& sending, qint64 nowMs)
{
    if (sending.babble)
        return endOf(sending.babbleMs, nowMs);
    return sending.slowMs > 0 ? nowMs + sending.delayMs + sending.slowMs : nowMs;
}

Sending serveStation(Controller& controller, Line& line, int number, Station& station,
                     const QByteArray& frame, qint64 nowMs)
{
    const QList<Fault> faults = takeFaults(controller.faults, number);
    if (const Fault* death = findFault(faults, FAULT_DEAD))
        station.deadUntilMs = endOf(death->parameter, nowMs);
    const QByteArray reply = carryOut(controller.framing, number, station, frame, faults);
    const Sending sending =
        applyFaults(faults, frame, reply, line.lastReply, controller.faults.noise);
    if (!reply.isEmpty())
        line.lastReply = reply;
    line.busyUntilMs = busyUntil(sending, nowMs);
    Counters& counters = controller.counters;
    ++counters.requests;
    counters.replies += sending.reply.isEmpty() ? 0 : 1;
    counters.exceptions += !reply.isEmpty() && isException(reply) ? 1 : 0;
    return sending;
}
} // namespace

Controller makeController(const QList<int>& stations, const Framing& framing, bool machines)
{
    Controller controller{framing, {}, machines};
    for (const int number : stations) {
        Station& station = controller.stations[number];
        if (machines)
            startMachine(station.machine, station.memory, number);
    }
    return controller;
}

Sending serve(Controller& controller, Line& line, const QByteArray& frame, qint64 nowMs)
{
    const int number = byteAt(frame, controller.framing.stationOffset);
    const auto station = controller.stations.find(number);
    const bool isBroadcast = number == BROADCAST_STATION;
    if (!isBroadcast && station == controller.stations.end())
        return {};
    if (nowMs < controller.deafUntilMs || nowMs < line.busyUntilMs ||
        (!isBroadcast && nowMs < station->deadUntilMs)) {
        ++controller.counters.swallowed;
        return {};
    }
    if (!isBroadcast)
        return serveStation(controller, line, number, *station, frame, nowMs);
    broadcast(controller, frame, nowMs);
    return {};
}

void runMachines(Controller& controller, qint64 elapsedMs)
{
    if (!controller.machines)
        return;
    for (Station& station : controller.stations)
        runMachine(station.machine, station.memory, elapsedMs);
}
} // namespace plc
