// The times of the line: silent interval, end of a reply, late replies, back-off.
#include "cases.h"
#include "link.h"
#include "timing.h"

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
    void backOff();
};

void PanelTiming::limits()
{
    const QList<QByteArray> in = given(4, ' ');
    const ReceiveLimits limits =
        receiveLimits(in[0].toInt(), in[1].toInt(), in[2].toInt(), in[3].toLongLong());
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
    const QList<QByteArray> in = given(3);
    QTEST(QString::number(lateReplyHold(in[0].toInt(), in[1] == "same", in[2].toInt(), 300)),
          "expected");
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
    takeDown(&link, text("cut"), 0);
    QCOMPARE(link.retryAt, MICROS_PER_SECOND / 4);
}

QTEST_APPLESS_MAIN(PanelTiming)
#include "tst_panel_timing.moc"
