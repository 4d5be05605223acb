#include "summary.h"

#include "screen.h"

namespace
{

QString seconds(Micros time)
{
    return QString::number(static_cast<double>(time) / MICROS_PER_SECOND, 'f', 2);
}

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
        lines << QStringLiteral("  %1 s  %2: %3").arg(seconds(callback.at), kind, callback.about);
    }
    return lines;
}

QStringList resultLines(const Statistics& statistics)
{
    QStringList lines;
    for (auto it = statistics.byResult.begin(); it != statistics.byResult.end(); ++it)
        lines << QStringLiteral("  result %1: %2 (%3)")
                     .arg(it.key(), 3)
                     .arg(it.value())
                     .arg(resultMeaning(it.key()));
    return lines;
}

} // namespace

QStringList summary(const Panel& panel, Micros ran)
{
    const Statistics& s = panel.statistics;
    QStringList lines;
    lines << QStringLiteral(
                 "Ran %1 s: %2 turns, %3 good replies, %4 failed, %5 retries, %6 scans/s")
                 .arg(seconds(ran))
                 .arg(s.turns)
                 .arg(s.good)
                 .arg(s.failed)
                 .arg(s.retries)
                 .arg(scansPerSecond(s.cyclicReads, panel.blocks, ran), 0, 'f', 1);
    lines << resultLines(s);
    lines << QStringLiteral("Stale bytes discarded: %1; link losses: %2")
                 .arg(s.discarded)
                 .arg(s.linkLosses);
    lines << QStringLiteral("Writes: %1").arg(panel.writes.size()) << writeLines(panel);
    lines << QStringLiteral("Callbacks: %1 finished done, %2 finished failed, %3 fail")
                 .arg(s.finishDone)
                 .arg(s.finishFailed)
                 .arg(s.fails);
    lines << callbackLines(s);
    lines << QStringLiteral("Tags at the end: %1").arg(panel.tags.size());
    for (int i = 0; i < panel.tags.size(); ++i)
        lines << QStringLiteral("  ") + tagLine(panel, i, ran);
    return lines;
}

ExitStatus exitStatus(const Panel& panel, Micros now)
{
    if (!writesGood(panel.writes))
        return EXIT_WRITE_FAILED;
    for (int i = 0; i < panel.tags.size(); ++i) {
        const bool silent = stationSilent(panel, panel.tags[i].station);
        if (qualityOf(panel.states[i], silent, now, panel.timeout) != Quality::Good)
            return EXIT_NOT_FRESH;
    }
    return EXIT_WELL;
}
