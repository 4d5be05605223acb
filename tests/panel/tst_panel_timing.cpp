// The times of the line: silent interval, end of a reply, late replies, back-off of a link that is
// down and of a station that does not answer.
#include "cases.h"
#include "late_replies.h"
#include "link.h"
#include "stations.h"

class PanelTiming : public QObject
{
    Q_OBJECT
private slots:
    void limits_data() { addCases(); }
    void limits();
    void receive_data() { addCases(); }
    void receive();
    void lateReply_data() { addCases(); }
    void lateReply();
    void foreign_data() { addCases(); }
    void foreign();
    void stations_data() { addCases(); }
    void stations();
    void backOff();
};

void PanelTiming::limits()
{
    const QList<QByteArray> in = given(4, ' ');
    const ReceiveLimits limits =
        receiveLimits(in[0].toInt(), in[1].toInt(), in[2].toInt(), in[3].toLongLong(), USB_GAP);
    QTEST(text("%1 %2 %3").arg(limits.silence).arg(limits.gap).arg(limits.timeout), "expected");
}

void PanelTiming::receive()
{
    const QList<QByteArray> in = given(4);
    QTEST(QString::number(receiveWait(in[0].toInt(), in[1].toInt(), in[2].toLongLong(),
                                      in[3].toLongLong(), {2, 20, 300})),
          "expected");
}

void PanelTiming::lateReply()
{
    LateReplies late;
    QStringList holds;
    for (const QByteArray& step : parts(given(1)[0], ',')) {
        const QList<QByteArray> words = step.split(' ');
        const Micros at = words[words.size() > 2 ? 2 : 1].toInt();
        const QByteArray frame = QByteArray::fromHex(words[0]);
        if (words.size() == 2) {
            holds << text("late by %1").arg(noteStray(&late, frame, at));
            continue;
        }
        const Asked asked = {frame, words[1].toInt(), words[0].startsWith("16")};
        const Hold hold = holdBefore(late, asked, at);
        holds << QString::number(hold.time);
        if (hold.expected > 1)
            holds.last() += text(" for %1").arg(hold.expected);
        noteOutcome(&late, asked, words.size() == 3, at, 300);
    }
    QTEST(holds.join(QLatin1Char(' ')), "expected");
}

void PanelTiming::foreign()
{
    const QList<QByteArray> in = given(2);
    const Asked asked = {QByteArray::fromHex(in[0]), 7, in[0].startsWith("16")};
    const QByteArray reply = QByteArray::fromHex(in[1]);
    QTEST(text(isForeign(asked, reply) ? "foreign" : "ours") +
              text(isFromStation(asked, reply) ? "" : ", not of the station") +
              text(isEchoed(asked, reply) ? ", echoed" : ""),
          "expected");
}

void PanelTiming::stations()
{
    const char* const modes[] = {"on", "dead", "probing", "off"};
    const char* const switches[] = {"", "=0", "=1"}; // the last argument of EnCommStation
    StationWatch station;
    QStringList seen;
    for (const QByteArray& step : parts(given(1)[0], ',')) {
        const Micros at = step.split(' ').value(1).toInt() * MICROS_PER_MILLI;
        Switch change = Switch::Keep;
        if (step == "answer")
            noteAnswer(&station);
        else if (step == "key")
            change = toggleByHand(&station);
        else if (step.startsWith("fail"))
            change = noteGivenUp(&station, 2, at);
        else
            change = probeWhenDue(&station, at);
        seen << text(modes[int(station.mode)]) + text(switches[int(change)]);
    }
    QTEST(seen.join(QLatin1Char(' ')), "expected");
}

void PanelTiming::backOff()
{
    bool there = false;
    Link link;
    link.open = [&there](QString* error) -> std::unique_ptr<QIODevice> {
        *error = text("gone");
        return there ? std::make_unique<QBuffer>() : nullptr;
    };
    QVector<Micros> tries; // in quarters of a second
    for (Micros quarter = 0; quarter < 120; ++quarter) {
        const Micros before = link.retryAt;
        QVERIFY(!bringUp(&link, quarter * MICROS_PER_SECOND / 4));
        if (link.retryAt != before)
            tries << quarter;
    }
    QCOMPARE(tries, (QVector<Micros>{0, 1, 3, 7, 15, 31, 63, 95}));
    QCOMPARE(link.error, text("gone"));
    there = true;
    QVERIFY(bringUp(&link, link.retryAt));
    // Bytes that came make it a good link; one that was only opened was tried in vain.
    const int failedTries = link.failedTries;
    noteHeard(&link, 0);
    QCOMPARE(link.failedTries, 0);
    takeDown(&link, text("cut"), 0);
    QCOMPARE(link.failedTries, 0);
    QCOMPARE(link.retryAt, MICROS_PER_SECOND / 4);
    QVERIFY(bringUp(&link, link.retryAt));
    takeDown(&link, text("closed at once"), 0);
    QCOMPARE(link.failedTries, 1);
    QCOMPARE(link.retryAt, MICROS_PER_SECOND / 2);
    QVERIFY(failedTries > 1);
}

QTEST_APPLESS_MAIN(PanelTiming)
#include "tst_panel_timing.moc"
