#include "summary.h"

#include "picture.h"

#include <algorithm>

namespace
{

constexpr double P99 = 0.99;

QString readBackText(const Write& write)
{
    switch (write.readBack) {
    case ReadBack::Same:
        return QStringLiteral(", read back as written");
    case ReadBack::Different:
        return QStringLiteral(", read back as ") + write.readValue;
    default:
        return QStringLiteral(", not read back");
    }
}

QStringList writeLines(const Panel& panel)
{
    QStringList lines;
    for (const Write& write : panel.writes) {
        QString line = QStringLiteral("  %1 %2").arg(writeText(write, panel.tags),
                                                     QLatin1String(writeStateText(write.state)));
        if (write.state == WriteState::Done)
            line += QStringLiteral(" in %1 ms")
                        .arg((write.finishedAt - write.queuedAt) / MICROS_PER_MILLI) +
                    readBackText(write);
        lines << line;
    }
    return lines;
}

QStringList callbackLines(const Statistics& statistics)
{
    QStringList lines;
    const qint64 all = statistics.finishDone + statistics.finishFailed + statistics.fails;
    if (all > statistics.callbacks.size())
        lines << QStringLiteral("  (the latest %1)").arg(statistics.callbacks.size());
    for (const TimedCallback& callback : statistics.callbacks) {
        const CallbackRecord& record = callback.record;
        const QString kind = record.finish ? QStringLiteral("finish key %1/%2 state %3")
                                                 .arg(record.hostKey)
                                                 .arg(record.hostSubKey)
                                                 .arg(record.state)
                                           : QStringLiteral("fail key %1").arg(record.hostKey);
        lines
            << QStringLiteral("  %1 s  %2: %3").arg(secondsText(callback.at), kind, callback.about);
    }
    return lines;
}

QStringList resultLines(const StationCounters& counters)
{
    QStringList lines;
    for (auto it = counters.byResult.begin(); it != counters.byResult.end(); ++it)
        lines << QStringLiteral("  result %1: %2 (%3)")
                     .arg(it.key(), 3)
                     .arg(it.value())
                     .arg(resultMeaning(it.key()));
    return lines;
}

QString exchangeText(const StationCounters& c)
{
    return QStringLiteral("%1 turns, %2 good, %3 failed (%4 unanswered), %5 retries, "
                          "%6 bytes sent, %7 received")
        .arg(c.turns)
        .arg(c.good)
        .arg(c.failed)
        .arg(c.unanswered)
        .arg(c.retries)
        .arg(c.bytesSent)
        .arg(c.bytesReceived);
}

QString scanText(const Histogram& scans)
{
    if (scans.count == 0)
        return QStringLiteral("no scan completed");
    return QStringLiteral("scan min %1 ms, mean %2 ms, p99 %3 ms, max %4 ms")
        .arg(millisText(scans.smallest), millisText(meanTime(scans)),
             millisText(percentile(scans, P99)), millisText(scans.largest));
}

QStringList stationLines(const Statistics& statistics)
{
    QStringList lines;
    for (auto it = statistics.stations.begin(); it != statistics.stations.end(); ++it)
        lines << QStringLiteral("Station %1: %2").arg(it.key()).arg(exchangeText(*it))
              << resultLines(*it) << QStringLiteral("  ") + scanText(it->scans);
    return lines;
}

QString writesText(const QVector<Write>& writes)
{
    QMap<WriteState, int> count;
    for (const Write& write : writes)
        ++count[write.state];
    QStringList parts;
    for (const WriteState state : {WriteState::Done, WriteState::Failed, WriteState::Refused,
                                   WriteState::Queued, WriteState::Waiting})
        parts
            << QStringLiteral("%1 %2").arg(count[state]).arg(QLatin1String(writeStateText(state)));
    return QStringLiteral("Writes: %1: ").arg(writes.size()) + parts.join(QLatin1String(", "));
}

} // namespace

QStringList tagTable(const Panel& panel, Micros now)
{
    QStringList lines = {tagHeading()};
    for (int i = 0; i < panel.tags.size(); ++i) {
        const double rate = static_cast<double>(panel.states[i].reads) *
                            static_cast<double>(MICROS_PER_SECOND) /
                            static_cast<double>(std::max(Micros{1}, now));
        lines << tagLine(panel, i, rate, now);
    }
    return lines;
}

QStringList summary(const Panel& panel, Micros ran)
{
    const Statistics& s = panel.statistics;
    QStringList lines;
    const StationCounters total = totalOf(s);
    lines << QStringLiteral("Ran %1 s: ").arg(secondsText(ran)) + exchangeText(total);
    lines << resultLines(total) << stationLines(s);
    lines << QStringLiteral("Stray bytes discarded: %1; link losses: %2")
                 .arg(s.discarded)
                 .arg(s.linkLosses);
    lines << QStringLiteral("Reads: %1 blocks received, %2 given up")
                 .arg(s.blocksRead)
                 .arg(s.blocksGivenUp);
    lines << writesText(panel.writes) << writeLines(panel);
    lines << QStringLiteral("Callbacks: %1 finished done, %2 finished failed, %3 fail")
                 .arg(s.finishDone)
                 .arg(s.finishFailed)
                 .arg(s.fails);
    lines << callbackLines(s);
    lines << QStringLiteral("Tags at the end: %1").arg(panel.tags.size());
    for (const QString& line : tagTable(panel, ran))
        lines << QStringLiteral("  ") + line;
    return lines;
}
