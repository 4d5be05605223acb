#include "support/driver.h"

#include <QtTest>

class Scheduler : public QObject
{
    Q_OBJECT

    static void queueWrites(int count, int station = 1)
    {
        for (int i = 0; i < count; ++i) {
            RW_VAR var = writeOf(MEMORY_WORD, i, 1, bytes("0100"), i, station);
            AddListWriteVar(&var, ADD_UNCHANGED);
        }
    }

    static void queueReads(int count, int firstAddress = 0)
    {
        for (int i = 0; i < count; ++i) {
            RW_VAR var = variable(OUTPUT_BYTE, firstAddress + i, 1);
            var.hostKey = 100 + i;
            AddListOnceReadVar(&var, ADD_UNCHANGED);
        }
    }

    static void addCyclic(int address, int station = 1)
    {
        RW_VAR var = variable(MEMORY_WORD, address, 1, station);
        AddListReadVar(&var);
    }

    /// One turn with a good reply: W, O or C for the list served, - for nothing to send.
    static QChar turn()
    {
        const Protocol* frame = ComCommunication();
        if (!frame)
            return QLatin1Char('-');
        QByteArray reply = withCrc(QByteArray(frame->replyLength - 2, '\0'));
        DataCom(&reply, reply.size());
        switch (PLC_driver.currentSource) {
        case SOURCE_WRITE:
            return QLatin1Char('W');
        case SOURCE_ONCE:
            return QLatin1Char('O');
        default:
            return QLatin1Char('C');
        }
    }

    static QString turns(int count)
    {
        QString served;
        for (int i = 0; i < count; ++i)
            served += turn();
        return served;
    }

    static QList<int> addresses(const QList<RW_VAR>& list)
    {
        QList<int> found;
        for (const RW_VAR& var : list)
            found << var.address;
        return found;
    }

private slots:
    void init() { resetDriver(); }

    void nothingToDo()
    {
        PLC_driver.writeBurst = PLC_driver.onceReadBurst = 3;
        QVERIFY(!ComCommunication());
        QCOMPARE(settings.scanDone, 1);
        QCOMPARE(PLC_driver.writeBurst, 0);
        QCOMPARE(PLC_driver.onceReadBurst, 0);
    }

    void pendingFrameIsReturnedAgain()
    {
        queueWrites(1);
        const Protocol* first = ComCommunication();
        queueReads(1);
        EnCommStation(1, 0);
        QCOMPARE(ComCommunication(), const_cast<Protocol*>(first));
        QCOMPARE(PLC_driver.writeBurst, 1);
        QCOMPARE(PLC_driver.currentSource, int{SOURCE_WRITE});
    }

    void precedence_data()
    {
        QTest::addColumn<int>("writes");
        QTest::addColumn<int>("reads");
        QTest::addColumn<int>("cyclic");
        QTest::addColumn<QString>("served");
        QTest::newRow("five writes, then a cyclic read") << 7 << 0 << 1 << text("WWWWWCWWCC");
        QTest::newRow("no cyclic reads: a turn without a frame")
            << 7 << 0 << 0 << text("WWWWW-WW--");
        QTest::newRow("five of each") << 7 << 7 << 1 << text("WWWWWOOOOOCWWOOC");
        QTest::newRow("one-shot reads alone") << 0 << 6 << 1 << text("OOOOOCOC");
        QTest::newRow("five of each, no cyclic reads") << 6 << 6 << 0 << text("WWWWWOOOOO-WO-");
    }

    void precedence()
    {
        QFETCH(int, writes);
        QFETCH(int, reads);
        QFETCH(int, cyclic);
        QFETCH(QString, served);
        queueWrites(writes);
        queueReads(reads);
        for (int i = 0; i < cyclic; ++i)
            addCyclic(i);
        QCOMPARE(turns(served.size()), served);
    }

    void sixthTurnWithoutCyclicReadsResetsTheBursts()
    {
        queueWrites(7);
        QCOMPARE(turns(5), text("WWWWW"));
        QCOMPARE(PLC_driver.writeBurst, 5);
        settings.scanDone = 0;
        QVERIFY(!ComCommunication());
        QCOMPARE(PLC_driver.writeBurst, 0);
        QCOMPARE(settings.scanDone, 1);
    }

    void framingIsChosenBySetting()
    {
        settings.remoteFraming = 1;
        queueWrites(1);
        QCOMPARE(request().left(1), bytes("18"));
        acknowledge();
        addCyclic(0);
        QCOMPARE(request().left(1), bytes("16"));
    }

    void offStationsArePassedOver()
    {
        EnCommStation(2, 0);
        queueWrites(2, 2);
        addCyclic(30);
        QCOMPARE(request(), withCrc("01 03 00 1E 00 01"));
        QCOMPARE(PLC_driver.writeList.size(), 2);
        QCOMPARE(addresses(PLC_driver.writeList), QList<int>() << 0 << 1);
        QCOMPARE(PLC_driver.currentSource, int{SOURCE_READ});
        QCOMPARE(PLC_driver.writeBurst, 0); // the cyclic read has reset it
    }

    void offStationsCountTowardsTheBurst()
    {
        EnCommStation(2, 0);
        queueWrites(2, 2);
        queueReads(3);
        ComCommunication();
        QCOMPARE(PLC_driver.writeBurst, 1);
        QCOMPARE(PLC_driver.onceReadBurst, 1);
        QCOMPARE(PLC_driver.currentSource, int{SOURCE_ONCE});
    }

    void headOfAnOffStationMovesToTheEnd()
    {
        EnCommStation(2, 0);
        addCyclic(1, 2);
        addCyclic(2);
        addCyclic(3);
        QCOMPARE(request(), withCrc("01 03 00 02 00 01"));
        QCOMPARE(addresses(PLC_driver.readList), QList<int>() << 2 << 3 << 1);
    }

    void allStationsOff()
    {
        EnCommStation(2, 0);
        for (int i = 0; i < 3; ++i)
            addCyclic(i, 2);
        QVERIFY(!ComCommunication());
        QCOMPARE(settings.scanDone, 1);
        QCOMPARE(addresses(PLC_driver.readList), QList<int>() << 0 << 1 << 2);
        QCOMPARE(PLC_driver.currentSource, int{SOURCE_READ});
        EnCommStation(-1, 0);
        QVERIFY(ComCommunication());
    }

    void writeWithoutAFrameIsGivenUpAtOnce_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("station");
        QTest::newRow("not writable") << int{INPUT_WORD} << 1;
        QTest::newRow("unknown type") << 99 << 1;
        QTest::newRow("bit of station 0") << int{MEMORY_BIT} << 0;
    }

    void writeWithoutAFrameIsGivenUpAtOnce()
    {
        QFETCH(int, type);
        QFETCH(int, station);
        settings.retryCount = 1;
        settings.frameCount = settings.framesDone = 7;
        settings.stationPerVar = 0;
        for (const int key : {4, 5, 4}) {
            RW_VAR var = writeOf(key == 4 ? type : MEMORY_WORD, key, 1, bytes("0100"), key,
                                 key == 4 ? station : 1);
            AddListWriteVar(&var, ADD_UNCHANGED);
        }
        addCyclic(30); // waits for the next turn
        PLC_driver.lastFailed = true;
        QVERIFY(!ComCommunication());
        QCOMPARE(events, QStringList() << text("finish 99 4 0 2") << text("fail 0 4 1"));
        QCOMPARE(PLC_driver.retVar.hostKey, 4);
        QCOMPARE(PLC_driver.retVar.result, int{RESULT_UNKNOWN});
        QCOMPARE(addresses(PLC_driver.writeList), QList<int>() << 5);
        QCOMPARE(settings.retryCount, 1);
        QCOMPARE(settings.frameCount, 7);
        QCOMPARE(settings.framesDone, 7);
        QVERIFY(PLC_driver.lastFailed);
        QCOMPARE(request(), withCrc("01 06 00 05 00 01"));
    }
};

QTEST_APPLESS_MAIN(Scheduler)
#include "tst_scheduler.moc"
