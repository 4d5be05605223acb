// The times of the line: silent interval, end of a reply, late replies, back-off.
#include "link.h"
#include "talmor_kp410_port.h"
#include "timing.h"

#include <QtTest>

class PanelTiming : public QObject
{
    Q_OBJECT
private slots:
    void silence_data();
    void silence();
    void limits();
    void receive_data();
    void receive();
    void lateReply_data();
    void lateReply();
    void backOff();
};

void PanelTiming::silence_data()
{
    QTest::addColumn<qint64>("expected");
    QTest::newRow("300") << qint64{128334};
    QTest::newRow("9600") << qint64{4011};
    QTest::newRow("19200") << qint64{2006};
    QTest::newRow("19201") << qint64{1750};
    QTest::newRow("115200") << qint64{1750};
}

void PanelTiming::silence()
{
    QTEST(silentInterval(QByteArray(QTest::currentDataTag()).toInt()), "expected");
}

void PanelTiming::limits()
{
    // 8 + 245 characters of 11 bits at 9,600 baud take 289.9 ms of their own.
    const ReceiveLimits slow = receiveLimits(8, 245, 9600, 300000);
    QCOMPARE(slow.timeout, Micros{300000 + 289895});
    QCOMPARE(slow.silence, silentInterval(9600));
    QVERIFY(slow.gap > slow.silence);
    // On a slow line the silent interval is the longer of the two.
    const ReceiveLimits slowest = receiveLimits(8, 7, 300, 300000);
    QCOMPARE(slowest.gap, slowest.silence);
    // A reply of any length may be the longest frame.
    QCOMPARE(receiveLimits(8, REPLY_ANY, 9600, 0).timeout, receiveLimits(8, 256, 9600, 0).timeout);
}

void PanelTiming::receive_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("replyLength");
    QTest::addColumn<int>("sinceLastByte");
    QTest::addColumn<int>("sinceRequest");
    QTest::addColumn<int>("wait");
    // Limits: silence 2, gap 20, time-out 300.
    QTest::newRow("no reply expected") << 0 << int(REPLY_NONE) << 0 << 0 << 0;
    QTest::newRow("nothing yet") << 0 << 9 << 900 << 100 << 200;
    QTest::newRow("nothing in time") << 0 << 9 << 900 << 300 << 0;
    QTest::newRow("nothing, long past") << 0 << 9 << 900 << 400 << 0;
    QTest::newRow("begun") << 3 << 9 << 5 << 100 << 15;
    QTest::newRow("exception in place of data") << 5 << 9 << 20 << 100 << 0;
    QTest::newRow("begun, time running out") << 3 << 9 << 0 << 290 << 10;
    QTest::newRow("noise until the time-out") << 3 << 9 << 0 << 300 << 0;
    QTest::newRow("complete, may go on") << 9 << 9 << 1 << 100 << 1;
    QTest::newRow("complete") << 9 << 9 << 2 << 100 << 0;
    QTest::newRow("too long, going on") << 10 << 9 << 0 << 100 << 2;
    QTest::newRow("too long, ended") << 10 << 9 << 2 << 100 << 0;
    QTest::newRow("any length, going on") << 9 << int(REPLY_ANY) << 5 << 100 << 15;
    QTest::newRow("any length, ended") << 9 << int(REPLY_ANY) << 20 << 100 << 0;
    QTest::newRow("endless noise") << 4096 << 9 << 0 << 10 << 0;
}

void PanelTiming::receive()
{
    QFETCH(int, bytes);
    QFETCH(int, replyLength);
    QFETCH(int, sinceLastByte);
    QFETCH(int, sinceRequest);
    const ReceiveLimits receive = {2, 20, 300};
    QTEST(int(receiveWait(bytes, replyLength, sinceLastByte, sinceRequest, receive)), "wait");
}

void PanelTiming::lateReply_data()
{
    QTest::addColumn<int>("unanswered");
    QTest::addColumn<bool>("repeated");
    QTest::addColumn<int>("sinceLastRequest");
    QTest::addColumn<int>("hold");
    QTest::newRow("all answered") << 0 << false << 10 << 0;
    QTest::newRow("the same frame again") << 1 << true << 300 << 0;
    QTest::newRow("given up, another frame") << 3 << false << 300 << 300;
    QTest::newRow("answered at the second try") << 1 << false << 50 << 550;
    QTest::newRow("long ago") << 3 << false << 700 << 0;
}

void PanelTiming::lateReply()
{
    QFETCH(int, unanswered);
    QFETCH(bool, repeated);
    QFETCH(int, sinceLastRequest);
    QTEST(int(lateReplyHold(unanswered, repeated, sinceLastRequest, 300)), "hold");
}

void PanelTiming::backOff()
{
    bool there = false;
    Link link;
    link.open = [&there](QString* error) -> std::unique_ptr<QIODevice> {
        *error = QStringLiteral("gone");
        return there ? std::make_unique<QBuffer>() : nullptr;
    };
    QVector<Micros> tries;
    for (Micros now = 0; now < 30 * MICROS_PER_SECOND; now += MICROS_PER_SECOND / 4) {
        const Micros before = link.retryAt;
        QVERIFY(!bringUp(&link, now));
        if (link.retryAt != before)
            tries << now * 4 / MICROS_PER_SECOND; // in quarters of a second
    }
    QCOMPARE(tries, (QVector<Micros>{0, 1, 3, 7, 15, 31, 63, 95}));
    QCOMPARE(link.error, QStringLiteral("gone"));
    there = true;
    QVERIFY(bringUp(&link, link.retryAt));
    takeDown(&link, QStringLiteral("cut"), 0);
    QCOMPARE(link.retryAt, MICROS_PER_SECOND / 4);
}

QTEST_APPLESS_MAIN(PanelTiming)
#include "tst_panel_timing.moc"
