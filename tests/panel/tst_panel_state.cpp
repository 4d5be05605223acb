// Which block dates which tag, what a tag's state is then, and what is counted.
#include "statistics.h"
#include "support/cases.h"
#include "tag_file.h"
#include "tag_state.h"

#include <cmath>

namespace
{

/// The block "TYPE ADDRESS LENGTH STATION".
ImageRange block(const QList<QByteArray>& words)
{
    RW_VAR var;
    while (var.regType < REGISTER_TYPE_COUNT && words[0] != REGISTER_TYPES[var.regType].name)
        ++var.regType;
    var.address = words[1].toInt();
    var.length = words[2].toInt();
    var.station = words[3].toInt();
    return rangeOfBlock(var);
}

QString coverage(const Given& in)
{
    const Tag tag = parseTags(QString(), text(in[0])).tags[0];
    TagState state = initialState(tag);
    QStringList out;
    for (const QByteArray& step : parts(in[1], ',')) {
        QList<QByteArray> words = step.split(' ');
        const bool failed = words[0] == "!";
        const bool concerned = failed ? markFailed(tag, block(words.mid(1)), out.size() + 1, &state)
                                      : markReceived(tag, block(words), out.size() + 1, &state);
        out << (concerned ? QString::number(receivedAt(state)) : text("-")) +
                   text(isDoubted(state) ? "!" : "");
    }
    return out.join(QLatin1Char(' '));
}

QString quality(const Given& in)
{
    TagState state;
    state.receivedAt = {in[0] == "never" ? NEVER : in[0].toInt() * MICROS_PER_MILLI};
    const Micros now = 10000 * MICROS_PER_MILLI;
    state.doubtedAt = in[1].contains("failed") ? now : NEVER;
    state.writtenAt = in[1].contains("written") ? now : NEVER;
    const Presence presence = in[1].contains("off")      ? Presence::Off
                              : in[1].contains("silent") ? Presence::Silent
                                                         : Presence::Present;
    return text(qualityText(
        qualityOf(state, presence, now, {300 * MICROS_PER_MILLI, 5000 * MICROS_PER_MILLI})));
}

QString results(const Given& in)
{
    const int code = in[0].toInt();
    Statistics counted;
    countTurn(&counted, {1, code, 8, 7});
    const StationCounters total = totalOf(counted);
    return text("%1, %2 good, %3 failed, %4 retries: %5")
        .arg(total.byResult.firstKey())
        .arg(total.good)
        .arg(total.failed)
        .arg(total.retries)
        .arg(resultMeaning(code));
}

QString scans(const Given& in)
{
    Statistics statistics;
    for (const QByteArray& step : parts(in[0], ',')) {
        RW_VAR block;
        block.station = 4;
        block.address = step[0];
        countBlock(&statistics, block, !step.contains('!'), step.split(' ')[1].toInt());
    }
    const Histogram& scans = statistics.stations[4].scans;
    return text("%1 scans, %2 to %3, mean %4; %5 read, %6 given up")
        .arg(scans.count)
        .arg(scans.smallest)
        .arg(scans.largest)
        .arg(meanTime(scans))
        .arg(statistics.blocksRead)
        .arg(statistics.blocksGivenUp);
}

} // namespace

class PanelState : public CaseTest
{
    Q_OBJECT
public:
    PanelState()
        : CaseTest(CASES, {{"coverage", 2, coverage},
                           {"quality", 2, quality},
                           {"results", 1, results},
                           {"scans", 1, scans}})
    {
    }
private slots:
    void percentiles()
    {
        // Times of all sizes, against the sorted list of them.
        QRandomGenerator random(5);
        Histogram histogram;
        QVector<Micros> times;
        for (int i = 0; i < 5000; ++i) {
            times << static_cast<Micros>(random.generate64() >> random.bounded(23, 64));
            addTime(&histogram, times.last());
        }
        std::sort(times.begin(), times.end());
        QCOMPARE(histogram.smallest, times.first());
        QCOMPARE(histogram.largest, times.last());
        for (const double share : {0.0, 0.01, 0.5, 0.9, 0.99, 1.0}) {
            const int rank = qMax(1, int(std::ceil(share * times.size())));
            const double exact = static_cast<double>(times[rank - 1]);
            const auto found = static_cast<double>(percentile(histogram, share));
            QVERIFY2(found >= exact && found <= 1.032 * exact,
                     qPrintable(text("%1: %2 for %3").arg(share).arg(found).arg(exact)));
        }
        QCOMPARE(percentile(Histogram(), 0.5), Micros(0));
    }
};

QTEST_APPLESS_MAIN(PanelState)
#include "tst_panel_state.moc"
