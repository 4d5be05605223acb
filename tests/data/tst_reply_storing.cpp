#include "data/Func_DealData.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

class ReplyStoring : public QObject
{
    Q_OBJECT

    static void expectReplyTo(const RW_VAR& var)
    {
        Protocol frame;
        frame.replyDataOffset = 3;
        frame.var = var;
        PLC_driver.frameList.append(frame);
    }

    static void store(const RW_VAR& var, QByteArray reply)
    {
        PLC_driver.frameList.clear();
        expectReplyTo(var);
        SaveToLocalDataErea(&reply);
    }

private slots:
    void init() { resetDriver(); }

    void images_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("image");
        QTest::newRow("words swapped")
            << 8 << 2 << bytes("1234 ABCD") << bytes("00000000 3412 CDAB");
        QTest::newRow("special words") << 13 << 0 << bytes("1234") << bytes("3412");
        QTest::newRow("bytes as they come")
            << 3 << 5 << bytes("010203") << bytes("0000000000 010203");
        QTest::newRow("special bits packed") << 12 << 1 << bytes("20") << bytes("00 20");
        QTest::newRow("odd byte of words dropped")
            << 8 << 0 << bytes("1234 ABCD EF") << bytes("3412 CDAB");
        QTest::newRow("nothing") << 3 << 0 << bytes("") << QByteArray();
        QTest::newRow("half a word") << 8 << 0 << bytes("12") << QByteArray();
        QTest::newRow("double words are never read")
            << 11 << 0 << bytes("12345678") << QByteArray();
        QTest::newRow("unknown type") << 14 << 0 << bytes("12345678") << QByteArray();
        QTest::newRow("before the image") << 8 << -1 << bytes("1234 5678") << QByteArray();
        QTest::newRow("far before") << 8 << INT_MIN << bytes("1234") << QByteArray();
        QTest::newRow("beyond the image")
            << 3 << MAX_IMAGE_BYTES - 1 << bytes("1234") << QByteArray();
        QTest::newRow("far beyond") << 8 << INT_MAX << bytes("1234") << QByteArray();
    }

    void images()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, image);
        store(variable(type, address, 1, 3), withCrc(bytes("01 03 00") + payload));
        QCOMPARE(stored(3, type), image);
        QCOMPARE(DataStorage.isEmpty(), image.isEmpty());
    }

    void lastByteOfAnImageIsReached()
    {
        store(variable(INPUT_BYTE, MAX_IMAGE_BYTES - 1, 1), withCrc("01 02 01 AA"));
        QCOMPARE(stored(1, AREA_INPUT).size(), int{MAX_IMAGE_BYTES});
        QCOMPARE(stored(1, AREA_INPUT).right(1), bytes("AA"));
    }

    void shortRepliesStoreNothing()
    {
        for (int size = 0; size < 5; ++size)
            store(variable(INPUT_BYTE, 0, 1), QByteArray(size, 'x'));
        QVERIFY(DataStorage.isEmpty());
    }

    void dataIsTakenFromTheOffsetToTheEnd_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<QByteArray>("image");
        QTest::newRow("0") << 0 << bytes("01 02 03 11");
        QTest::newRow("7, cut off at the end") << 7 << bytes("A5 5A");
        QTest::newRow("end") << 9 << QByteArray();
        QTest::newRow("beyond") << 12 << QByteArray();
        QTest::newRow("negative") << -1 << QByteArray();
    }

    void dataIsTakenFromTheOffsetToTheEnd()
    {
        QFETCH(int, offset);
        expectReplyTo(variable(INPUT_BYTE, 0, 4));
        PLC_driver.frameList[0].replyDataOffset = offset;
        QByteArray reply = bytes("01 02 03 11 22 33 44 A5 5A");
        SaveToLocalDataErea(&reply);
        QTEST(stored(1, AREA_INPUT), "image");
    }

    void unconvertedRecordsAreKeyedByTheirOwnType()
    {
        store(variable(INPUT_WORD, 1, 1), withCrc("01 02 02 12 34"));
        QCOMPARE(stored(1, INPUT_WORD), bytes("00 00 34 12"));
        store(variable(OUTPUT_BIT, 1, 1), withCrc("01 01 01 12"));
        QCOMPARE(stored(1, OUTPUT_BIT), bytes("00 12"));
        QCOMPARE(DataStorage.value(1).size(), 2);
    }

    void laterDataOverwritesOnlyItsBytes()
    {
        store(variable(INPUT_BYTE, 0, 4), withCrc("01 02 04 11 22 33 44"));
        store(variable(INPUT_BYTE, 1, 2), withCrc("01 02 02 AA BB"));
        QCOMPARE(stored(1, AREA_INPUT), bytes("11 AA BB 44"));
    }

    void readModifyWrite_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("word");
        QTest::addColumn<QByteArray>("merged");
        const auto row = [](const char* name, int type, int address, const char* value,
                            const char* word, const char* merged) {
            QTest::newRow(name) << type << address << bytes(value) << bytes(word) << bytes(merged);
        };
        row("bit set", 2, 21, "01", "1204", "1224");
        row("bit of the high byte", 2, 15, "80", "0000", "8000"); // any nonzero byte is 1
        row("bit cleared", 2, 16, "00", "FFFF", "FFFE");
        row("no value clears", 2, 16, "", "FFFF", "FFFE");
        row("odd byte", 5, 7, "AB", "1234", "AB34");
        row("even byte", 5, 6, "AB", "1234", "12AB");
    }

    void readModifyWrite()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(QByteArray, value);
        QFETCH(QByteArray, word);
        QFETCH(QByteArray, merged);
        RW_VAR step = variable(type, 1, 1);
        step.rmwStep = RMW_READ_STEP;
        expectReplyTo(step);
        expectReplyTo(variable(type, 1, 1));
        PLC_driver.frameList[1].frame = bytes("01 06 00 01 00 00 00 00");
        PLC_driver.writeList << writeOf(type, address, 1, value);
        QByteArray reply = withCrc(bytes("01 03 02") + word);
        SaveToLocalDataErea(&reply);
        QCOMPARE(PLC_driver.frameList.at(1).frame, withCrc(bytes("01 06 00 01") + merged));
        QVERIFY(DataStorage.isEmpty());
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
};

QTEST_APPLESS_MAIN(ReplyStoring)
#include "tst_reply_storing.moc"
