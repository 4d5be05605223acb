#include "support/driver.h"

#include <QtTest>

#include <climits>

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

/// What a careless runtime or a broken line hands in.
class Hostile : public QObject
{
    Q_OBJECT

    static bool locksAreFree()
    {
        const bool lists = PLC_driver.listMutex.tryLock();
        const bool storage = PLC_driver.storageMutex.tryLock();
        const bool stations = PLC_driver.stationMutex.tryLock();
        if (lists)
            PLC_driver.listMutex.unlock();
        if (storage)
            PLC_driver.storageMutex.unlock();
        if (stations)
            PLC_driver.stationMutex.unlock();
        return lists && storage && stations;
    }

private slots:
    void init() { resetDriver(); }
    void cleanup() { QVERIFY(locksAreFree()); }

    void callsBeforeTheSettingsRecord()
    {
        SetComInfo(nullptr);
        RW_VAR var = writeOf(MEMORY_WORD, 0, 1, bytes("0100"));
        var.addressText = text("0");
        QList<VAR_DESC> vars;
        vars << VAR_DESC();
        QByteArray value = bytes("0100");
        QByteArray reply;
        QVERIFY(!ComCommunication());
        QCOMPARE(DataCom(&reply, 0)->result, 1);
        QCOMPARE(AddListOnceReadVar(&var, ADD_CHECKED), 0);
        QCOMPARE(ReCreatReadVarList(&vars), 0);
        QCOMPARE(write(MEMORY_WORD, "0", value, 1), 0);
        QCOMPARE(AddListWriteVar(&var, ADD_CHECKED), 1);
        QVERIFY(!ComCommunication());
        SetComInfo(&settings);
        QVERIFY(ComCommunication());
        SetComInfo(nullptr); // under a pending frame
        QVERIFY(!ComCommunication());
        vars.clear();
        AddListReadVar(&var);
        QCOMPARE(ReCreatReadVarList(&vars), 0);
        QVERIFY(PLC_driver.readList.isEmpty());
        QCOMPARE(PLC_driver.writeList.size(), 1);
        QVERIFY(events.isEmpty());
    }

    void nullPointers()
    {
        QList<RW_VAR> out;
        RW_VAR var;
        QCOMPARE(AddListReadVar(nullptr), 0);
        QCOMPARE(AddListWriteVar(nullptr, ADD_UNCHANGED), 0);
        QCOMPARE(AddListOnceReadVar(nullptr, ADD_UNCHANGED), 0);
        QCOMPARE(ReCreatReadVarList(nullptr), 0);
        WhetherGroup(1, 1, nullptr, &out);
        WhetherGroup(1, 1, &var, nullptr);
        QVERIFY(out.isEmpty());
        QCOMPARE(int{CalCRC(nullptr, 5)}, 0xFFFF);
        QCOMPARE(int{CalSUM(nullptr, 5)}, 0);
    }

    void nullReplyWithALengthChangesNothing()
    {
        RW_VAR var = writeOf(MEMORY_WORD, 0, 1, bytes("0100"), 3);
        AddListWriteVar(&var, ADD_CHECKED);
        ComCommunication();
        QCOMPARE(DataCom(nullptr, 8)->result, 1);
        QCOMPARE(PLC_driver.frameList.size(), 1);
        QCOMPARE(DataCom(nullptr, 0)->result, 44); // nothing came
    }

    void missingCallbacksAreSkipped()
    {
        RegistCallBackFuncIntf(nullptr, nullptr);
        for (int key = 0; key < 2; ++key) {
            RW_VAR var = writeOf(MEMORY_WORD, 0, 1, bytes("0100"), key);
            AddListWriteVar(&var, ADD_UNCHANGED);
        }
        request();
        QCOMPARE(acknowledge(), 1);
        request();
        QCOMPARE(answerNothing(), 42);
        QVERIFY(PLC_driver.writeList.isEmpty());
    }

    void failureIsReportedBeforeThePurgeUnderTheLock()
    {
        RegistCallBackFuncIntf(onFinish, noteQueueAndLock);
        for (int address = 10; address < 12; ++address) {
            RW_VAR var = writeOf(MEMORY_WORD, address, 1, bytes("0100"));
            AddListWriteVar(&var, ADD_UNCHANGED);
        }
        request();
        answerNothing();
        QCOMPARE(waitingDuringFail, 1);
        QVERIFY(locked);
        QVERIFY(PLC_driver.writeList.isEmpty());
    }

    void callbackThatTakesTheSettingsAway()
    {
        RegistCallBackFuncIntf(dropSettings, onFail);
        RW_VAR var = writeOf(MEMORY_WORD, 10, 1, bytes("0100"), 5);
        AddListWriteVar(&var, ADD_UNCHANGED);
        request();
        QCOMPARE(answerNothing(), 46);
        SetComInfo(&settings);
        RW_VAR unwritable = writeOf(INPUT_WORD, 0, 1, bytes("0100"), 6);
        AddListWriteVar(&unwritable, ADD_UNCHANGED);
        QVERIFY(request().isEmpty());
        QVERIFY(PLC_driver.writeList.isEmpty());
        QCOMPARE(events, QStringList() << text("fail 0 5 1") << text("fail 0 6 1"));
    }

    void settingsReplacedUnderAPair()
    {
        RW_VAR var = writeOf(MEMORY_BIT, 37, 1, bytes("01"), 7);
        AddListWriteVar(&var, ADD_UNCHANGED);
        request();
        ComInfo other = settings;
        other.frameCount = other.framesDone = 0;
        SetComInfo(&other);
        QCOMPARE(answer(bytes("01 03 02 00 10 B9 88")), 1);
        QVERIFY(events.isEmpty()); // nothing has been written yet
        QCOMPARE(request(), bytes("01 06 00 02 00 30 28 1E"));
        acknowledge();
        QCOMPARE(events, QStringList() << text("finish 99 7 0 1"));
    }

    /// Records that no encoder or area can make sense of: each is served or given up, none stays,
    /// and no image outgrows its limit.
    void senselessRecords_data()
    {
        QTest::addColumn<int>("remoteFraming");
        QTest::newRow("local") << 0;
        QTest::newRow("remote") << 1;
    }

    void senselessRecords()
    {
        QFETCH(int, remoteFraming);
        settings.remoteFraming = remoteFraming;
        int queued = 0;
        for (int type = -2; type < 17; ++type) {
            for (const int address : {INT_MIN, -1, 0, 1, 65536, INT_MAX}) {
                for (const int length : {INT_MIN, -1, 0, 1, 65536, INT_MAX}) {
                    RW_VAR var = writeOf(type, address, length, bytes("01"), ++queued);
                    var.addressText = QString::number(address);
                    AddListWriteVar(&var, ADD_UNCHANGED);
                    var.rwFlag = RW_READ;
                    var.hostKey = -queued;
                    AddListOnceReadVar(&var, ADD_UNCHANGED);
                    AddListOnceReadVar(&var, ADD_CHECKED);
                }
            }
        }
        for (int turn = 0; turn < 20 * queued; ++turn) {
            const Protocol* frame = ComCommunication();
            if (frame) // writes get no reply
                answer(frame->var.rwFlag == RW_WRITE
                           ? QByteArray()
                           : withCrc(QByteArray(qBound(0, frame->replyLength - 2, 300), '\x77')));
        }
        QVERIFY(PLC_driver.writeList.isEmpty() && PLC_driver.onceReadList.isEmpty());
        for (int key = 1; key <= queued; ++key)
            QCOMPARE(events.count(QString::fromLatin1("finish 99 %1 0 2").arg(key)), 1);
        for (const QByteArray& image : DataStorage.value(1))
            QVERIFY(image.size() <= MAX_IMAGE_BYTES);
    }
};

QTEST_APPLESS_MAIN(Hostile)
#include "tst_hostile.moc"
