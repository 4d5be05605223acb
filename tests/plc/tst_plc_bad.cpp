// The program with faults, over its links.
#include "frames.h"
#include "plc_links.h"

#include <QElapsedTimer>
#include <QtTest>

#include <algorithm>

class BadTest : public QObject
{
    Q_OBJECT
private slots:
    void bytesAndTimesOfFaults()
    {
        Plc plc("--tcp 127.0.0.1:0 --no-machine --fault echo@1 --fault delay:300@2 "
                "--fault slow:300@4 --fault babble:300@6");
        Client client(plc.announced("tcp"));
        const QByteArray request[] = {bytes("01 03 0000 0001 +"), bytes("01 03 0000 0002 +")};
        const QByteArray reply[] = {bytes("01 03 02 0000 +"), bytes("01 03 04 00000000 +")};

        client.ask(request[0]);
        QCOMPARE(client.take(15), (request[0] + reply[0]).toHex(' '));
        // Late: what is asked later is answered first.
        QElapsedTimer timer;
        timer.start();
        client.ask(request[0]);
        client.ask(request[1]);
        QCOMPARE(client.take(16), (reply[1] + reply[0]).toHex(' '));
        QVERIFY2(timer.elapsed() >= 300, qPrintable(QString::number(timer.elapsed())));
        // Slow: what is asked meanwhile is lost.
        timer.start();
        client.ask(request[0]);
        client.ask(request[1]);
        QCOMPARE(client.take(7), reply[0].toHex(' '));
        QVERIFY2(timer.elapsed() >= 300, qPrintable(QString::number(timer.elapsed())));
        client.ask(request[1]);
        QCOMPARE(client.take(9), reply[1].toHex(' '));
        // Babble: noise comes as long as it lasts, and what is asked meanwhile is lost.
        timer.start();
        client.ask(request[0]);
        client.ask(request[1]);
        const QByteArray noise = client.take(100);
        QVERIFY(!noise.contains(reply[1].toHex(' ')));
        while (client.isHeard(100))
            QVERIFY2(timer.elapsed() < WAIT_MS, "the babble does not end");
        QVERIFY2(timer.elapsed() >= 300, qPrintable(QString::number(timer.elapsed())));
        client.ask(request[1]);
        QCOMPARE(client.take(9), reply[1].toHex(' '));
        plc.send(SIGTERM);
        QCOMPARE(plc.reported(), QByteArray("kp410-plc: 7 requests, 6 replies, 0 exceptions, "
                                            "2 swallowed; faults: babble 1, echo 1, delay 1, "
                                            "slow 1"));
    }
};

QTEST_GUILESS_MAIN(BadTest)
#include "tst_plc_bad.moc"
