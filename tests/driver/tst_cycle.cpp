#include "support/driver.h"

#include <QtTest>

namespace
{
int waitingDuringFail = -1;
bool locked = false;

void noteQueueAndLock(QList<RW_VAR>*, int, int)
{
    waitingDuringFail = PLC_driver.writeList.size();
    locked = !PLC_driver.listMutex.tryLock();
    if (!locked)
        PLC_driver.listMutex.unlock();
}

void dropSettings(int, int, int, int)
{
    SetComInfo(nullptr);
}
} // namespace

class Cycle : public QObject
{
    Q_OBJECT

    static void queueWrite(int key, int address, int station = 1)
    {
        RW_VAR var = writeOf(MEMORY_WORD, address, 1, bytes("3412"), key, station);
        var.hostSubKey = 8;
        AddListWriteVar(&var, ADD_UNCHANGED);
    }

    static void queueRead(int key, int nodeId = 1)
    {
        RW_VAR var = variable(MEMORY_WORD, 100, 2);
        var.hostKey = key;
        var.nodeId = nodeId;
        AddListOnceReadVar(&var, ADD_UNCHANGED);
    }

    static void addCyclic(int key, int address)
    {
        RW_VAR var = variable(MEMORY_WORD, address, 1);
        var.hostKey = key;
        AddListReadVar(&var);
    }

private slots:
    void init() { resetDriver(); }

    void noPendingFrame()
    {
        PLC_driver.retVar.result = 41;
        settings.retryCount = 3;
        QByteArray reply = withCrc("01 03 02 00 0A");
        RW_VAR* served = DataCom(&reply, 7);
        QCOMPARE(served, &PLC_driver.retVar);
        QCOMPARE(served->result, 1);
        QCOMPARE(settings.retryCount, 3);
        QVERIFY(events.isEmpty());
        QVERIFY(DataStorage.isEmpty());
    }

    void cyclicReadReachesTheScreen()
    {
        addCyclic(3, 100);
        addCyclic(4, 200);
        QCOMPARE(request(), bytes("01 03 00 64 00 01 C5 D5"));
        QCOMPARE(answer(withCrc("01 03 02 12 34")), 1);
        QCOMPARE(PLC_driver.retVar.hostKey, 3);
        QCOMPARE(PLC_driver.readList.at(0).hostKey, 4);
        QCOMPARE(PLC_driver.readList.at(1).hostKey, 3);
        QVERIFY(events.isEmpty());
        QByteArray out;
        read(MEMORY_WORD, "100", 1, out);
        QCOMPARE(out, bytes("3412"));
    }

    void writeIsShownSentAndReportedOnce()
    {
        QByteArray value = bytes("3412");
        QCOMPARE(write(MEMORY_WORD, "10", value, 1, 6), 1);
        QByteArray out;
        QCOMPARE(request(), bytes("01 06 00 0A 12 34 A4 BF"));
        read(MEMORY_WORD, "10", 1, out);
        QCOMPARE(out, bytes("3412"));
        QCOMPARE(answer(bytes("01 06 00 0A 12 34 A4 BF")), 1);
        QCOMPARE(events, QStringList() << text("finish 99 6 0 1"));
        QVERIFY(PLC_driver.writeList.isEmpty());
        QCOMPARE(PLC_driver.retVar.hostKey, 6);
        QVERIFY(PLC_driver.retVar.data.isEmpty());
        QVERIFY(request().isEmpty());
    }

    void memoryBitIsReadModifiedAndWritten()
    {
        PLC_driver.retVar.hostKey = 55;
        QByteArray value = bytes("01");
        QCOMPARE(write(MEMORY_BIT, "4.5", value, 1, 7), 1);
        QCOMPARE(request(), bytes("01 03 00 02 00 01 25 CA"));
        QCOMPARE(answer(bytes("01 03 02 00 10 B9 88")), 1);
        QCOMPARE(PLC_driver.retVar.hostKey, 55); // still the variable before
        QVERIFY(events.isEmpty());
        QCOMPARE(request(), bytes("01 06 00 02 00 30 28 1E"));
        QCOMPARE(answer(bytes("01 06 00 02 00 30 28 1E")), 1);
        QCOMPARE(events, QStringList() << text("finish 99 7 0 1"));
        QCOMPARE(PLC_driver.retVar.hostKey, 7);
        QByteArray out;
        read(MEMORY_BIT, "4.5", 1, out);
        QCOMPARE(out, bytes("01"));
    }

    void failedReadStepOfAPairIsSentAgain()
    {
        settings.retryLimit = 1;
        QByteArray value = bytes("01");
        write(MEMORY_BIT, "4.5", value, 1, 7);
        request();
        QCOMPARE(answerNothing(), 0);
        QCOMPARE(request(), bytes("01 03 00 02 00 01 25 CA"));
        answer(bytes("01 03 02 00 10 B9 88"));
        request();
        QCOMPARE(answerNothing(), 48); // the count goes on: 41 + key 7
        QVERIFY(PLC_driver.frameList.isEmpty());
        QCOMPARE(events, QStringList() << text("finish 99 7 0 2") << text("fail 0 7 1"));
    }

    void givenUpReadStepTakesItsWriteAlong()
    {
        QByteArray value = bytes("01");
        write(MEMORY_BIT, "4.5", value, 1, 7);
        request();
        QCOMPARE(answerNothing(), 48);
        QVERIFY(request().isEmpty()); // a half-built write frame must never be sent
    }

    void settingsReplacedUnderAPair()
    {
        QByteArray value = bytes("01");
        write(MEMORY_BIT, "4.5", value, 1, 7);
        request();
        ComInfo other = settings;
        other.frameCount = other.framesDone = 0;
        SetComInfo(&other);
        QCOMPARE(answer(bytes("01 03 02 00 10 B9 88")), 1);
        QVERIFY(events.isEmpty()); // nothing has been written yet
        QCOMPARE(request(), bytes("01 06 00 02 00 30 28 1E"));
        acknowledge();
        QCOMPARE(events, QStringList() << text("finish 99 7 0 1"));
        SetComInfo(&settings);
    }

    void retriesThenGivenUp()
    {
        settings.retryLimit = 2;
        settings.scanDone = 1;
        PLC_driver.scanCount = 5;
        addCyclic(3, 100);
        for (int attempt = 1; attempt <= 2; ++attempt) {
            QCOMPARE(request(), bytes("01 03 00 64 00 01 C5 D5"));
            QCOMPARE(answerNothing(), 0);
            QCOMPARE(settings.retryCount, attempt);
        }
        QVERIFY(PLC_driver.lastFailed);
        QCOMPARE(settings.scanDone, 0);
        QCOMPARE(PLC_driver.scanCount, 0);
        request();
        QCOMPARE(answer(bytes("01 83 02")), 74);
        QCOMPARE(settings.retryCount, 0);
        QCOMPARE(events, QStringList() << text("fail 0 3 1"));
        QCOMPARE(PLC_driver.readList.size(), 1);
        QCOMPARE(PLC_driver.retVar.hostKey, 3);
    }

    void goodReplyDoesNotResetTheRetryCount()
    {
        settings.retryLimit = 1;
        addCyclic(3, 100);
        request();
        QCOMPARE(answerNothing(), 0);
        QCOMPARE(answer(withCrc("01 03 02 12 34")), 1);
        QVERIFY(!PLC_driver.lastFailed);
        QCOMPARE(settings.retryCount, 1);
        request();
        QCOMPARE(answerNothing(), 44);
    }

    void oneShotReads_data()
    {
        QTest::addColumn<int>("nodeId");
        QTest::addColumn<bool>("answered");
        QTest::addColumn<QStringList>("reported");
        QTest::addColumn<int>("code");
        const QString done = text("finish 99 2 0 1");
        const QString failed = text("finish 99 2 0 2");
        const QString given = text("fail 0 2 1");
        QTest::newRow("good") << 1 << true << (QStringList() << done) << 1;
        QTest::newRow("missing") << 1 << false << (QStringList() << failed << given) << 43;
        QTest::newRow("remote good") << 4 << true << QStringList() << 100;
        QTest::newRow("remote missing") << 4 << false << (QStringList() << given) << 143;
    }

    void oneShotReads()
    {
        QFETCH(int, nodeId);
        QFETCH(bool, answered);
        queueRead(2, nodeId);
        QCOMPARE(request(), bytes("01 03 00 64 00 02 85 D4"));
        QTEST(answered ? answer(bytes("01 03 04 00 0A 01 02 5A 60")) : answerNothing(), "code");
        QTEST(events, "reported");
        QVERIFY(PLC_driver.onceReadList.isEmpty());
        QCOMPARE(PLC_driver.retVar.hostKey, 2);
        QCOMPARE(DataStorage.isEmpty(), nodeId != 1 || !answered);
    }

    void theLastOfAGroupReportsItsSuccess()
    {
        queueRead(2);
        queueRead(2);
        request();
        answer(bytes("01 03 04 00 0A 01 02 5A 60"));
        QVERIFY(events.isEmpty());
        request();
        answer(bytes("01 03 04 00 0A 01 02 5A 60"));
        QCOMPARE(events, QStringList() << text("finish 99 2 0 1"));
    }

    void successIsReportedThoughOthersWait()
    {
        queueWrite(5, 10);
        queueWrite(6, 11);
        queueWrite(5, 12);
        PLC_driver.writeList[2].hostSubKey = 9; // another request
        request();
        acknowledge();
        QCOMPARE(events, QStringList() << text("finish 99 5 8 1"));
    }

    void writesOfAnotherNodeAreReported()
    {
        queueWrite(5, 10);
        PLC_driver.writeList[0].nodeId = 4;
        request();
        QCOMPARE(acknowledge(), 100);
        QCOMPARE(events, QStringList() << text("finish 99 5 8 1"));
    }

    void aFailureTakesItsGroupAlong_data()
    {
        QTest::addColumn<int>("stationPerVar");
        QTest::addColumn<int>("left");
        QTest::newRow("stations count") << 1 << 3;
        QTest::newRow("stations do not count") << 0 << 2;
    }

    void aFailureTakesItsGroupAlong()
    {
        QFETCH(int, stationPerVar);
        settings.stationPerVar = stationPerVar;
        queueWrite(5, 10);
        queueWrite(5, 11);
        queueWrite(5, 12);
        queueWrite(6, 13);
        queueWrite(5, 14, 2); // the same keys at another station
        queueWrite(5, 15);
        PLC_driver.writeList.last().hostSubKey = 9; // another request
        queueRead(5);                               // and on another list
        request();
        QCOMPARE(answerNothing(), 46);
        QCOMPARE(events, QStringList() << text("finish 99 5 8 2") << text("fail 0 5 1"));
        QTEST(PLC_driver.writeList.size(), "left");
        QCOMPARE(PLC_driver.writeList.at(0).hostKey, 6);
        QCOMPARE(PLC_driver.onceReadList.size(), 1);
    }

    void failureIsReportedBeforeThePurge()
    {
        RegistCallBackFuncIntf(onFinish, noteQueueAndLock);
        queueWrite(5, 10);
        queueWrite(5, 11);
        request();
        answerNothing();
        QCOMPARE(waitingDuringFail, 1);
        QVERIFY(locked);
    }

    void callbackThatTakesTheSettingsAway()
    {
        RegistCallBackFuncIntf(dropSettings, onFail);
        queueWrite(5, 10);
        request();
        QCOMPARE(answerNothing(), 46);
        SetComInfo(&settings);
        RW_VAR unwritable = writeOf(INPUT_WORD, 0, 1, bytes("0100"), 6);
        AddListWriteVar(&unwritable, ADD_UNCHANGED);
        QVERIFY(request().isEmpty());
        QVERIFY(PLC_driver.writeList.isEmpty());
        QCOMPARE(events, QStringList() << text("fail 0 5 1") << text("fail 0 6 1"));
    }

    void fullPassIsCounted()
    {
        addCyclic(1, 1);
        addCyclic(2, 2);
        for (int i = 0; i < 2; ++i) {
            request();
            answer(withCrc("01 03 02 00 00"));
            QCOMPARE(settings.scanDone, 0);
        }
        queueWrite(5, 10); // counts like every completed variable
        request();
        acknowledge();
        QCOMPARE(settings.scanDone, 1);
        QCOMPARE(PLC_driver.scanCount, 0);
        request();
        answer(withCrc("01 03 02 00 00"));
        QCOMPARE(PLC_driver.scanCount, 0); // the pass is over until somebody asks for another
        request();
        answerNothing();
        QCOMPARE(settings.scanDone, 0);
    }

    void remoteRepliesDoNotCount()
    {
        queueRead(1, 4);
        request();
        answer(bytes("01 03 04 00 0A 01 02 5A 60"));
        QCOMPARE(PLC_driver.scanCount, 0);
        QCOMPARE(settings.scanDone, 0);
    }

    void writeThatExpectsNoReplyIsDoneWithoutOne()
    {
        settings.remoteFraming = 1;
        queueWrite(5, 10, 0);
        QCOMPARE(ComCommunication()->replyLength, 0);
        QCOMPARE(answerNothing(), 1);
        QCOMPARE(events, QStringList() << text("finish 99 5 8 1"));
    }
};

QTEST_APPLESS_MAIN(Cycle)
#include "tst_cycle.moc"
