// Which block dates which tag, what a tag's state is then, and what a result counts as.
#include "cases.h"
#include "statistics.h"
#include "tag_file.h"
#include "tag_state.h"

#include <cmath>

class PanelState : public QObject
{
    Q_OBJECT
private slots:
    void coverage_data() { addCases(); }
    void coverage();
    void quality_data() { addCases(); }
    void quality();
    void results_data() { addCases(); }
    void results();
    void percentiles();
    void scans();
};

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

} // namespace

void PanelState::coverage()
{
    const QList<QByteArray> in = given(2);
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
    QTEST(out.join(QLatin1Char(' ')), "expected");
}

void PanelState::quality()
{
    const QList<QByteArray> in = given(2);
    TagState state;
    state.receivedAt = {in[0] == "never" ? NEVER : in[0].toInt() * MICROS_PER_MILLI};
    const Micros now = 10000 * MICROS_PER_MILLI;
    state.doubtedAt = in[1].contains("failed") ? now : NEVER;
    state.writtenAt = in[1].contains("written") ? now : NEVER;
    const Presence presence = in[1].contains("off")      ? Presence::Off
                              : in[1].contains("silent") ? Presence::Silent
                                                         : Presence::Present;
    const Quality quality =
        qualityOf(state, presence, now, {300 * MICROS_PER_MILLI, 5000 * MICROS_PER_MILLI});
    QTEST(text(qualityText(quality)), "expected");
}

void PanelState::results()
{
    const int code = given(1)[0].toInt();
    Statistics counted;
    countTurn(&counted, {1, code, 8, 7});
    const StationCounters total = totalOf(counted);
    QCOMPARE(total.byResult.size(), 1);
    QTEST(text("%1, %2 good, %3 failed, %4 retries: %5")
              .arg(total.byResult.firstKey())
              .arg(total.good)
              .arg(total.failed)
              .arg(total.retries)
              .arg(resultMeaning(code)),
          "expected");
}

void PanelState::percentiles()
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

void PanelState::scans()
{
    // Two blocks of a station; one is given up once, and what the outage took is no scan.
    Statistics statistics;
    RW_VAR a, b;
    a.station = b.station = 4;
    b.address = 7;
    countBlock(&statistics, a, true, 1000);
    countBlock(&statistics, b, true, 1010);
    countBlock(&statistics, a, true, 1030);
    countBlock(&statistics, b, false, 1040);
    countBlock(&statistics, a, true, 8000);
    countBlock(&statistics, b, true, 9000);
    countBlock(&statistics, a, true, 8050);
    const Histogram& scans = statistics.stations[4].scans;
    QCOMPARE(scans.count, 2);
    QCOMPARE(scans.smallest, Micros(30));
    QCOMPARE(scans.largest, Micros(50));
    QCOMPARE(meanTime(scans), Micros(40));
    QCOMPARE(statistics.blocksRead, 6);
    QCOMPARE(statistics.blocksGivenUp, 1);
}

QTEST_APPLESS_MAIN(PanelState)
#include "tst_panel_state.moc"
