#include "picture.h"

#include "short_form.h"

#include <algorithm>

namespace
{

QString linkText(const Panel& panel, Micros now)
{
    if (panel.link.device)
        return QStringLiteral("up");
    return QStringLiteral("DOWN (%1), next try in %2 s")
        .arg(panel.link.error, secondsText(std::max(Micros{0}, panel.link.retryAt - now)));
}

/// The longest of the stations' last scans: how old a live value may be.
QString scanText(const Panel& panel)
{
    Micros longest = NEVER;
    for (auto it = panel.stations.begin(); it != panel.stations.end(); ++it)
        if (it->mode == StationMode::On && it->silentSince == NEVER)
            longest = std::max(longest, panel.statistics.stations.value(it.key()).lastScan);
    return longest == NEVER ? QStringLiteral("-") : millisText(longest) + QStringLiteral(" ms");
}

QString modeText(const StationWatch& watch, Micros now)
{
    const QString silent =
        watch.silentSince == NEVER
            ? QString()
            : QStringLiteral("NO ANSWER for %1 s").arg(secondsText(now - watch.silentSince));
    switch (watch.mode) {
    case StationMode::OffByHand:
        return QStringLiteral("OFF by hand");
    case StationMode::Dead:
        return silent + QStringLiteral(", OFF, probe in %1 s")
                            .arg(secondsText(std::max(Micros{0}, watch.probeAt - now)));
    case StationMode::Probing:
        return silent + QStringLiteral(", probing");
    default:
        return silent.isEmpty() ? QStringLiteral("on") : silent;
    }
}

QString tagRow(const QString& name, const QString& address, const QString& value,
               const QString& age, const QString& quality, const QString& rate)
{
    return QStringLiteral("%1 %2 %3 %4  %5 %6")
        .arg(name, -18)
        .arg(address, -12)
        .arg(value, 14)
        .arg(age, 9)
        .arg(quality, -9)
        .arg(rate, 7);
}

QString shownValue(const TagState& state)
{
    return state.value.isEmpty() ? QStringLiteral("-") : state.value;
}

} // namespace

QString statusLine(const Panel& panel, Micros now)
{
    const Queues queues = queueLengths(panel);
    return QStringLiteral("%1%2 s  link %3 %4 | scan %5 | queued: %6 writes, %7 reads")
        .arg(panel.paused ? QStringLiteral("PAUSED ") : QString(), secondsText(now),
             panel.link.name, linkText(panel, now), scanText(panel))
        .arg(queues.writes)
        .arg(queues.onceReads);
}

QStringList stationTexts(const Panel& panel, Micros now)
{
    QStringList troubled, well;
    for (auto it = panel.stations.begin(); it != panel.stations.end(); ++it) {
        const StationCounters counters = panel.statistics.stations.value(it.key());
        const bool isWell = it->mode == StationMode::On && it->silentSince == NEVER;
        (isWell ? well : troubled) << QStringLiteral("station %1: %2, %3 good, %4 failed")
                                          .arg(it.key())
                                          .arg(modeText(*it, now))
                                          .arg(counters.good)
                                          .arg(counters.failed);
    }
    return troubled + well;
}

QString tagHeading()
{
    return tagRow(QStringLiteral("TAG"), QStringLiteral("ADDRESS"), QStringLiteral("VALUE"),
                  QStringLiteral("AGE"), QStringLiteral("QUALITY"), QStringLiteral("READS/S"));
}

QString tagLine(const Panel& panel, int index, double readsPerSecond, Micros now)
{
    const Tag& tag = panel.tags[index];
    const TagState& state = panel.states[index];
    const Micros received = receivedAt(state);
    const QString age = received == NEVER ? QStringLiteral("-")
                                          : secondsText(now - received) + QStringLiteral(" s");
    return tagRow(tag.name, QStringLiteral("%1 @%2").arg(shortForm(tag)).arg(tag.station),
                  shownValue(state), age, QLatin1String(qualityText(qualityAt(panel, index, now))),
                  QString::number(readsPerSecond, 'f', 1));
}

QString compactLine(const Panel& panel, Micros now)
{
    QStringList values;
    for (int i = 0; i < panel.tags.size(); ++i) {
        const Quality quality = qualityAt(panel, i, now);
        QString text = QStringLiteral("%1=%2").arg(panel.tags[i].name, shownValue(panel.states[i]));
        if (quality != Quality::Good)
            text += QStringLiteral("(%1)").arg(QLatin1String(qualityText(quality)));
        values << text;
    }
    return values.join(QLatin1Char(' '));
}
