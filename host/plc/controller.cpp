#include "controller.h"

#include "wire.h"

namespace plc
{
namespace
{
bool isException(const QByteArray& reply)
{
    return (byteAt(reply, 1) & EXCEPTION_FLAG) != 0;
}

QByteArray serveStation(const Framing& framing, int number, Station& station,
                        const QByteArray& frame)
{
    return answer(station.memory, number, framing.parse(frame, station.memory));
}

void broadcast(Controller& controller, const QByteArray& frame)
{
    bool illegal = false;
    for (auto it = controller.stations.begin(); it != controller.stations.end(); ++it)
        illegal = isException(serveStation(controller.framing, it.key(), *it, frame)) || illegal;
    controller.counters.exceptions += illegal ? 1 : 0;
}
} // namespace

Controller makeController(const QList<int>& stations, const Framing& framing)
{
    Controller controller{framing, {}};
    for (const int number : stations) {
        Station& station = controller.stations[number];
        startMachine(station.machine, station.memory, number);
    }
    return controller;
}

QByteArray serve(Controller& controller, const QByteArray& frame, qint64 nowMs)
{
    const int number = byteAt(frame, controller.framing.stationOffset);
    const auto station = controller.stations.find(number);
    if (number != BROADCAST_STATION && station == controller.stations.end())
        return {};
    if (nowMs < controller.deafUntilMs) {
        ++controller.counters.swallowed;
        return {};
    }
    ++controller.counters.requests;
    if (number == BROADCAST_STATION) {
        broadcast(controller, frame);
        return {};
    }
    const QByteArray reply = serveStation(controller.framing, number, *station, frame);
    ++controller.counters.replies;
    controller.counters.exceptions += isException(reply) ? 1 : 0;
    return reply;
}

void runMachines(Controller& controller, qint64 elapsedMs)
{
    for (Station& station : controller.stations)
        runMachine(station.machine, station.memory, elapsedMs);
}
} // namespace plc
