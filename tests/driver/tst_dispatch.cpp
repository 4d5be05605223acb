#include "driver/dispatch.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

namespace
{
typedef int (*Dispatch)(QByteArray* reply, int length);
}
Q_DECLARE_METATYPE(Dispatch)

class DispatchOfReplies : public QObject
{
    Q_OBJECT

    static void expectReply(int replyLength, int hostKey, int rwFlag = RW_READ)
    {
        Protocol frame;
        frame.replyLength = replyLength;
        frame.replyDataOffset = 3;
        frame.var = variable(MEMORY_WORD, 0, 2);
        frame.var.hostKey = hostKey;
        frame.var.rwFlag = rwFlag;
        PLC_driver.frameList.append(frame);
    }

private slots:
    void init() { resetDriver(); }

    void codes_data()
    {
        QTest::addColumn<int>("expected");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("rwFlag");
        QTest::addColumn<int>("localCode"); // of hostKey 0; an error adds the key
        QTest::addColumn<int>("remoteCode");
        QTest::addColumn<bool>("stores");
        const QByteArray good = bytes("01 03 04 00 0A 01 02 5A 60");
        const QByteArray corrupt = bytes("01 03 04 00 0A 01 02 60 5A");
        const QByteArray ack = withCrc("01 06 00 0A 12 34");
        QTest::newRow("good read") << 9 << good << 9 << 0 << 1 << 100 << true;
        QTest::newRow("good write") << 8 << ack << 8 << 1 << 1 << 100 << false;
        QTest::newRow("missing") << 9 << good << 0 << 0 << 41 << 141 << false;
        QTest::newRow("short") << 9 << good << 8 << 0 << 71 << 171 << false;
        QTest::newRow("long") << 9 << withCrc(good) << 11 << 0 << 71 << 171 << false;
        QTest::newRow("wrong length and wrong CRC") << 9 << corrupt << 8 << 0 << 71 << 171 << false;
        QTest::newRow("negative length") << 9 << good << -9 << 0 << 71 << 171 << false;
        QTest::newRow("corrupt") << 9 << corrupt << 9 << 0 << 11 << 111 << false;
        QTest::newRow("neither read nor write") << 9 << good << 9 << 2 << 11 << 111 << false;
        QTest::newRow("fewer bytes than said") << 9 << good.left(7) << 9 << 0 << 11 << 111 << false;
        QTest::newRow("any length, good") << -1 << good << 9 << 0 << 1 << 100 << true;
        QTest::newRow("any length, corrupt") << -1 << corrupt << 9 << 0 << 11 << 111 << false;
        QTest::newRow("any length, one byte") << -1 << good << 1 << 0 << 11 << 111 << false;
        QTest::newRow("any length, missing") << -1 << good << 0 << 0 << 41 << 141 << false;
        QTest::newRow("any length, negative") << -1 << good << -1 << 0 << 11 << 111 << false;
        QTest::newRow("none expected, none came") << 0 << good << 0 << 1 << 1 << 100 << false;
        QTest::newRow("none expected, one came") << 0 << good << 9 << 1 << 71 << 171 << false;
        QTest::newRow("bytes beyond the length")
            << 9 << good + "more" << 9 << 0 << 1 << 100 << true;
        QTest::newRow("exception") << 9 << withCrc("01 83 02") << 5 << 0 << 71 << 171 << false;
        QTest::newRow("exception where 5 fit")
            << 5 << withCrc("01 83 02") << 5 << 0 << 1 << 100 << false;
    }

    void codes()
    {
        QFETCH(int, expected);
        QFETCH(QByteArray, reply);
        QFETCH(int, length);
        QFETCH(int, rwFlag);
        expectReply(expected, 0, rwFlag);
        QTEST(DealDataOfRemoteArea(&reply, length), "remoteCode");
        QVERIFY(DataStorage.isEmpty());
        QTEST(DealDataOfLocalArea(&reply, length), "localCode");
        QTEST(stored(1, AREA_MEMORY) == bytes("0A 00 02 01"), "stores");
        QCOMPARE(PLC_driver.frameList.size(), 1);
    }

    void errorsAreSpreadByKey_data()
    {
        QTest::addColumn<Dispatch>("dispatch");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("first");
        QTest::newRow("corrupt") << Dispatch(DealDataOfLocalArea) << QByteArray(9, 'x') << 11;
        QTest::newRow("missing") << Dispatch(DealDataOfLocalArea) << QByteArray() << 41;
        QTest::newRow("length") << Dispatch(DealDataOfLocalArea) << QByteArray(8, 'x') << 71;
        QTest::newRow("remote corrupt")
            << Dispatch(DealDataOfRemoteArea) << QByteArray(9, 'x') << 111;
        QTest::newRow("remote missing") << Dispatch(DealDataOfRemoteArea) << QByteArray() << 141;
        QTest::newRow("remote length")
            << Dispatch(DealDataOfRemoteArea) << QByteArray(8, 'x') << 171;
    }

    void errorsAreSpreadByKey()
    {
        QFETCH(Dispatch, dispatch);
        QFETCH(QByteArray, reply);
        QFETCH(int, first);
        expectReply(9, 0);
        for (int key = 0; key < 12; ++key) {
            PLC_driver.frameList[0].var.hostKey = key;
            QCOMPARE(dispatch(&reply, reply.size()), first + key);
        }
        for (const int key : {12, -1, INT_MAX, INT_MIN}) {
            PLC_driver.frameList[0].var.hostKey = key;
            QCOMPARE(dispatch(&reply, reply.size()), first);
        }
    }

    void outcomesBeyondTheTable()
    {
        QCOMPARE(GetDriverReturnValue(8), 200);
        QCOMPARE(GetDriverReturnValue(-1), 200);
        QCOMPARE(GetDriverReturnValue(INT_MIN), 200);
        QCOMPARE(GetDriverReturnValue(4), 100); // no frame is looked at
        QCOMPARE(GetDriverReturnValue(0), 1);
    }

    void remoteReadModifyWriteCompletesItsWrite()
    {
        expectReply(7, 0);
        PLC_driver.frameList[0].var.regType = MEMORY_BIT;
        PLC_driver.frameList[0].var.rmwStep = RMW_READ_STEP;
        expectReply(8, 0);
        PLC_driver.frameList[1].frame = bytes("01 06 00 01 00 00 00 00");
        PLC_driver.writeList << writeOf(MEMORY_BIT, 16, 1, bytes("01"));
        QByteArray reply = withCrc("01 03 02 80 00");
        settings.framesDone = 0;
        QCOMPARE(DealDataOfRemoteArea(&reply, 7), 1);
        QCOMPARE(PLC_driver.frameList.at(1).frame, withCrc("01 06 00 01 80 01"));
        settings.framesDone = 1;
        QCOMPARE(DealDataOfRemoteArea(&reply, 7), 100);
        settings.framesDone = 2;
        QCOMPARE(DealDataOfRemoteArea(&reply, 7), 1);
        QVERIFY(DataStorage.isEmpty());
        QVERIFY(PLC_driver.listMutex.tryLock());
        PLC_driver.listMutex.unlock();
    }
};

QTEST_APPLESS_MAIN(DispatchOfReplies)
#include "tst_dispatch.moc"
