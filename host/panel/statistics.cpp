#include "statistics.h"

namespace
{

constexpr int CALLBACKS_KEPT = 1000; // a panel runs for years

} // namespace

const ResultInfo* resultInfo(int code)
{
    for (const ResultInfo& info : RESULTS)
        if (code >= info.code && code < info.code + (info.error ? ERROR_GROUP_SIZE : 1))
            return &info;
    return nullptr;
}

bool isGood(int result)
{
    const ResultInfo* info = resultInfo(result);
    return info != nullptr && !info->error;
}

QString resultMeaning(int code)
{
    if (code == RESULT_RETRY)
        return QStringLiteral("failed, the frame is sent again");
    const ResultInfo* info = resultInfo(code);
    return info != nullptr ? QLatin1String(info->meaning) : QStringLiteral("unknown outcome");
}

void countTurn(Statistics* statistics, const Turn& turn)
{
    StationCounters& station = statistics->stations[turn.station];
    ++station.turns;
    ++(isGood(turn.result) ? station.good : station.failed);
    station.retries += turn.result == RESULT_RETRY ? 1 : 0;
    station.unanswered += turn.replyExpected && turn.bytesReceived == 0 ? 1 : 0;
    station.bytesSent += turn.bytesSent;
    station.bytesReceived += turn.bytesReceived;
    const ResultInfo* info = resultInfo(turn.result);
    ++station.byResult[info != nullptr ? info->code : turn.result];
}

void countCallback(Statistics* statistics, const TimedCallback& callback)
{
    const CallbackRecord& record = callback.record;
    if (!record.finish)
        ++statistics->fails;
    else
        ++(record.state == FINISH_DONE ? statistics->finishDone : statistics->finishFailed);
    if (statistics->callbacks.size() == CALLBACKS_KEPT)
        statistics->callbacks.removeFirst();
    statistics->callbacks << callback;
}

void countBlock(Statistics* statistics, const RW_VAR& block, bool good, Micros now)
{
    ++(good ? statistics->blocksRead : statistics->blocksGivenUp);
    StationCounters& station = statistics->stations[block.station];
    const QPair<int, int> key(block.regType, block.address);
    if (!good) {
        station.lastRead.clear();
        return;
    }
    if (station.lastRead.contains(key)) {
        station.lastScan = now - station.lastRead[key];
        addTime(&station.scans, station.lastScan);
    }
    station.lastRead[key] = now;
}

StationCounters totalOf(const Statistics& statistics)
{
    StationCounters total;
    for (const StationCounters& station : statistics.stations) {
        total.turns += station.turns;
        total.good += station.good;
        total.failed += station.failed;
        total.unanswered += station.unanswered;
        total.retries += station.retries;
        total.bytesSent += station.bytesSent;
        total.bytesReceived += station.bytesReceived;
        for (auto it = station.byResult.begin(); it != station.byResult.end(); ++it)
            total.byResult[it.key()] += *it;
    }
    return total;
}

void updateRate(Rate* rate, qint64 count, Micros now)
{
    if (now - rate->since < MICROS_PER_SECOND)
        return;
    rate->perSecond = static_cast<double>(count - rate->base) *
                      static_cast<double>(MICROS_PER_SECOND) /
                      static_cast<double>(now - rate->since);
    rate->since = now;
    rate->base = count;
}
