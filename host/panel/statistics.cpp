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

QString resultMeaning(int code)
{
    if (code == RESULT_RETRY)
        return QStringLiteral("failed, the frame is sent again");
    const ResultInfo* info = resultInfo(code);
    return info != nullptr ? QLatin1String(info->meaning) : QStringLiteral("unknown outcome");
}

void countReply(Statistics* statistics, int result)
{
    const ResultInfo* info = resultInfo(result);
    ++statistics->turns;
    ++(info != nullptr && !info->error ? statistics->good : statistics->failed);
    if (result == RESULT_RETRY)
        ++statistics->retries;
    ++statistics->byResult[info != nullptr ? info->code : result];
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

double scansPerSecond(qint64 cyclicReads, int blocks, Micros time)
{
    if (blocks < 1 || time <= 0)
        return 0;
    return static_cast<double>(cyclicReads) * static_cast<double>(MICROS_PER_SECOND) /
           (static_cast<double>(blocks) * static_cast<double>(time));
}

void updateRate(Rate* rate, qint64 cyclicReads, int blocks, Micros now)
{
    if (now - rate->since < MICROS_PER_SECOND)
        return;
    rate->perSecond = scansPerSecond(cyclicReads - rate->base, blocks, now - rate->since);
    rate->since = now;
    rate->base = cyclicReads;
}
