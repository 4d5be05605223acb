#include "data/Func_DealData.h"
#include "support/driver.h"

#include <QtTest>

/// What no encoder builds and so no trace reaches.
class ReplyStoring : public QObject
{
    Q_OBJECT

    static void expectReplyTo(const RW_VAR& var, int offset = 3)
    {
        Protocol frame;
        frame.replyDataOffset = offset;
        frame.var = var;
        PLC_driver.frameList.append(frame);
    }

private slots:
    void init() { resetDriver(); }

    void dataIsTakenFromTheOffsetToTheEnd_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("size");
        QTest::addColumn<QByteArray>("image");
        QTest::newRow("3") << 3 << 9 << bytes("11 22 33 44");
        QTest::newRow("0") << 0 << 9 << bytes("01 02 03 11");
        QTest::newRow("7, cut off at the end") << 7 << 9 << bytes("A5 5A");
        QTest::newRow("end") << 9 << 9 << QByteArray();
        QTest::newRow("beyond") << 12 << 9 << QByteArray();
        QTest::newRow("negative") << -1 << 9 << QByteArray();
        QTest::newRow("shortest reply") << 3 << 5 << QByteArray();
        QTest::newRow("shorter") << 0 << 4 << QByteArray();
        QTest::newRow("nothing") << 3 << 0 << QByteArray();
    }

    void dataIsTakenFromTheOffsetToTheEnd()
    {
        QFETCH(int, offset);
        QFETCH(int, size);
        expectReplyTo(variable(INPUT_BYTE, 0, 4), offset);
        QByteArray reply = bytes("01 02 03 11 22 33 44 A5 5A").left(size);
        SaveToLocalDataErea(&reply);
        QTEST(stored(1, AREA_INPUT), "image");
    }

    void oddByteOfWordsIsDropped()
    {
        expectReplyTo(variable(MEMORY_WORD, 0, 1));
        for (const char* payload : {"12", "12 34 AB CD EF"}) {
            QByteArray reply = withCrc(bytes("01 03 00") + bytes(payload));
            SaveToLocalDataErea(&reply);
        }
        QCOMPARE(stored(1, AREA_MEMORY), bytes("34 12 CD AB"));
    }

    /// A read that says it is half of a pair, where there is no pair or nothing that can be merged.
    void readModifyWriteWithoutItsOtherHalf_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<bool>("hasWriteFrame");
        QTest::addColumn<bool>("hasWrite");
        QTest::addColumn<int>("replySize");
        QTest::newRow("no write frame") << 2 << 1 << false << true << 7;
        QTest::newRow("no write") << 2 << 1 << true << false << 7;
        QTest::newRow("another type") << 8 << 1 << true << true << 7;
        QTest::newRow("negative address") << 2 << -17 << true << true << 7;
        QTest::newRow("short reply") << 2 << 1 << true << true << 4;
    }

    void readModifyWriteWithoutItsOtherHalf()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(bool, hasWriteFrame);
        QFETCH(bool, hasWrite);
        QFETCH(int, replySize);
        const QByteArray incomplete = bytes("01 06 00 01 00 00 00 00");
        RW_VAR step = variable(type, 1, 1);
        step.rmwStep = RMW_READ_STEP;
        expectReplyTo(step);
        if (hasWriteFrame) {
            expectReplyTo(variable(type, 1, 1));
            PLC_driver.frameList[1].frame = incomplete;
        }
        if (hasWrite)
            PLC_driver.writeList << writeOf(type, address, 1, bytes("01"));
        QByteArray reply = QByteArray(replySize, '\x55');
        SaveToLocalDataErea(&reply);
        QVERIFY(DataStorage.isEmpty());
        if (hasWriteFrame)
            QCOMPARE(PLC_driver.frameList.at(1).frame, incomplete);
    }

    void aWriteFrameCutShortIsLengthened()
    {
        RW_VAR step = variable(MEMORY_BIT, 1, 1);
        step.rmwStep = RMW_READ_STEP;
        expectReplyTo(step);
        expectReplyTo(variable(MEMORY_BIT, 1, 1));
        PLC_driver.frameList[1].frame = bytes("01 06 00 01");
        PLC_driver.writeList << writeOf(MEMORY_BIT, 21, 1, bytes("01"));
        QByteArray reply = withCrc("01 03 02 12 04");
        SaveToLocalDataErea(&reply);
        QCOMPARE(PLC_driver.frameList.at(1).frame, withCrc("01 06 00 01 12 24"));
    }
};

QTEST_APPLESS_MAIN(ReplyStoring)
#include "tst_reply_storing.moc"
