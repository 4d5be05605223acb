#include "encode/Func_Read.h"
#include "encode/Func_Remote.h"
#include "encode/Func_Write.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

class Requests : public QObject
{
    Q_OBJECT

    static void reply_columns()
    {
        QTest::addColumn<QByteArray>("frame");
        QTest::addColumn<int>("replyLength");
        QTest::addColumn<int>("dataOffset");
        QTest::addColumn<int>("dataLength");
    }

    static void compareWithRow(const Protocol& sent)
    {
        QTEST(sent.frame, "frame");
        QCOMPARE(sent.frameLength, sent.frame.size());
        QTEST(sent.replyLength, "replyLength");
        QTEST(sent.replyDataOffset, "dataOffset");
        QTEST(sent.replyDataLength, "dataLength");
        QCOMPARE(sent.reserved1 | sent.reserved2 | sent.reserved3, 0);
        QCOMPARE(settings.frameCount, PLC_driver.frameList.size());
        QCOMPARE(settings.framesDone, 0);
    }

private slots:
    void init()
    {
        resetDriver();
        settings.frameCount = settings.framesDone = 77;
    }

    void reads_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("station");
        reply_columns();
        const auto row = [](const char* frame, int type, int address, int length, int station,
                            int reply, int data) {
            QTest::newRow(frame) << type << address << length << station << bytes(frame) << reply
                                 << 3 << data;
        };
        row("01 01 00 10 00 18 3D C5", OUTPUT_BYTE, 2, 3, 1, 8, 3);
        row("01 03 00 64 00 02 85 D4", MEMORY_WORD, 100, 2, 1, 9, 4);
        row("02 31 00 08 00 08 FC 39", SPECIAL_BIT, 1, 1, 2, 6, 1);
        row("02 33 00 05 00 01 D4 3C", SPECIAL_WORD, 5, 1, 2, 7, 2);
        const auto crc = [](const char* frame, int type, int address, int length, int reply,
                            int data) {
            QTest::newRow(frame) << type << address << length << 257 << withCrc(frame) << reply << 3
                                 << data;
        };
        crc("01 02 00 00 00 08", INPUT_BYTE, 8192, 1, 6, 1); // the bit number wraps
        crc("01 02 00 08 00 10", INPUT_DWORD, 1, 2, 7, 2);   // registered unchanged
        crc("01 03 00 07 00 02", MEMORY_BIT, 7, 2, 9, 4);
        crc("01 03 00 00 00 00", MEMORY_WORD, 0, 0, 5, 0);
        crc("01 00 00 07 00 09", 14, 7, 9, 5, 0);
        crc("01 03 FF FF FF FA", MEMORY_WORD, -1, -6, 5, 0); // no reply can have fewer bytes
        crc("01 03 00 00 FF FF", MEMORY_WORD, 0, INT_MAX, INT_MAX, INT_MAX - 5);
    }

    void reads()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(int, length);
        QFETCH(int, station);
        RW_VAR var = variable(type, address, length, station);
        var.data = bytes("AB");
        ReadRegister(&var);
        QCOMPARE(PLC_driver.frameList.size(), 1);
        compareWithRow(PLC_driver.frameList.at(0));
        QCOMPARE(PLC_driver.frameList.at(0).var.data, var.data);
    }

    void writes_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("length");
        QTest::addColumn<QByteArray>("data");
        reply_columns();
        const auto row = [](const char* frame, int type, int address, int length,
                            const char* data) {
            QTest::newRow(frame) << type << address << length << bytes(data) << bytes(frame) << 8
                                 << 0 << 0;
        };
        row("01 0F 00 03 00 04 01 0B 3B 51", OUTPUT_BIT, 3, 4, "0B");
        row("01 06 00 0A 12 34 A4 BF", MEMORY_WORD, 10, 1, "34 12");
        row("01 10 00 0A 00 02 04 12 34 56 78 08 E4", MEMORY_WORD, 10, 2, "34 12 78 56");
        row("01 10 00 14 00 02 04 56 78 12 34 6F B6", MEMORY_DWORD, 20, 2, "78 56 34 12");
        row("01 35 00 05 01 FF 00 1E 99", SPECIAL_BIT, 5, 1, "01");
        row("01 35 00 05 00 00 00 0E A9", SPECIAL_BIT, 5, 1, "00");
        const auto crc = [](const char* frame, int type, int address, int length,
                            const char* data) {
            QTest::newRow(frame) << type << address << length << bytes(data) << withCrc(frame) << 8
                                 << 0 << 0;
        };
        crc("01 35 00 05 00 00", SPECIAL_BIT, 5, 1, "");
        crc("01 35 00 05 80 FF 00", SPECIAL_BIT, 5, 1, "80");
        crc("01 06 00 14", MEMORY_DWORD, 20, 1, "78 56");
        crc("01 10 00 14 00 03 04 56 78 00 34", MEMORY_DWORD, 20, 3, "78 56 34"); // byte missing
        crc("01 10 00 0A 00 00 00", MEMORY_WORD, 10, 0, "34 12");
        crc("01 10 FF FF FF FF 00", MEMORY_WORD, -1, -1, "34 12");
        crc("01 0F 00 40 00 10 02 01 02", OUTPUT_DWORD, 64, 16, "01 02");
    }

    void writes()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(int, length);
        QFETCH(QByteArray, data);
        const RW_VAR var = writeOf(type, address, length, data);
        WriteRegister(&var);
        QCOMPARE(PLC_driver.frameList.size(), 1);
        compareWithRow(PLC_driver.frameList.at(0));
    }

    void readModifyWritePair_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::newRow("bit") << int{MEMORY_BIT} << 37;
        QTest::newRow("byte") << int{MEMORY_BYTE} << 5;
    }

    void readModifyWritePair()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        RW_VAR var = writeOf(type, address, 1, bytes("01"), 6);
        var.label = text("pump");
        WriteRegister(&var);
        QCOMPARE(PLC_driver.frameList.size(), 2);
        QCOMPARE(settings.frameCount, 2);
        const Protocol& readStep = PLC_driver.frameList.at(0);
        QCOMPARE(readStep.frame, bytes("01 03 00 02 00 01 25 CA"));
        QCOMPARE(readStep.replyLength, 7);
        QCOMPARE(readStep.replyDataOffset, 3);
        QCOMPARE(readStep.replyDataLength, 2);
        QCOMPARE(readStep.var.address, 2);
        QCOMPARE(readStep.var.rwFlag, 0);
        QCOMPARE(readStep.var.rmwStep, -1);
        const Protocol& writeStep = PLC_driver.frameList.at(1);
        QCOMPARE(writeStep.frame, bytes("01 06 00 02 00 00 00 00"));
        QCOMPARE(writeStep.replyLength, 8);
        QCOMPARE(writeStep.replyDataLength, 0);
        QCOMPARE(writeStep.var.address, 2);
        QCOMPARE(writeStep.var.rwFlag, 1);
        QCOMPARE(writeStep.var.rmwStep, 0);
        QCOMPARE(writeStep.var.hostKey, 6);
        QCOMPARE(writeStep.var.data, bytes("01"));
        QCOMPARE(writeStep.var.label, var.label);
    }

    void onlyStationZeroItselfIsSpecial()
    {
        const RW_VAR bit = writeOf(MEMORY_BIT, 0, 1, bytes("01"), 0, 256);
        WriteRegister(&bit);
        QCOMPARE(PLC_driver.frameList.size(), 2);
        Remote_WriteVar(&bit);
        QCOMPARE(PLC_driver.frameList.at(2).replyLength, 8);
    }

    void writesWithoutAFrame_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("station");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("storesValue");
        for (const int type : {0, 3, 6, 9, 13, 14, -1})
            QTest::newRow(qPrintable(QString::number(type))) << type << 1 << 0 << 1 << false;
        QTest::newRow("bit of station 0") << 2 << 0 << 0 << 1 << true;
        QTest::newRow("byte of station 0") << 5 << 0 << 0 << 1 << true;
        QTest::newRow("negative bit") << 2 << 1 << -1 << 1 << false;
        QTest::newRow("negative byte") << 5 << 1 << -2 << 1 << false;
        QTest::newRow("longer than any area") << 8 << 1 << 0 << 1048577 << false;
    }

    void writesWithoutAFrame()
    {
        QFETCH(int, type);
        QFETCH(int, station);
        QFETCH(int, address);
        QFETCH(int, length);
        const RW_VAR var = writeOf(type, address, length, bytes("01"), 0, station);
        WriteRegister(&var);
        QVERIFY(PLC_driver.frameList.isEmpty());
        QCOMPARE(settings.frameCount, 77);
        QTEST(!DataStorage.isEmpty(), "storesValue");
    }

    void valueBeingWrittenIsShownUnlessTheLineFails()
    {
        const RW_VAR var = writeOf(MEMORY_WORD, 1, 1, bytes("34 12"));
        PLC_driver.lastFailed = true;
        WriteRegister(&var);
        QVERIFY(DataStorage.isEmpty());
        QCOMPARE(PLC_driver.frameList.size(), 1);
        PLC_driver.frameList.clear();
        PLC_driver.lastFailed = false;
        WriteRegister(&var);
        QCOMPARE(stored(1, AREA_MEMORY), bytes("00 00 34 12"));
    }

    void remoteReads_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("rmwStep");
        reply_columns();
        const auto row = [](const char* frame, int type, int rmwStep, int reply, int data) {
            QTest::newRow(frame) << type << rmwStep << bytes(frame) << reply << 3 << data;
        };
        row("16 07 00 01 01 00 04 00 00 00 02 00 03 00 00 00 00 00 00 00 00 28", 4, 0, 8, 3);
        row("16 07 00 01 01 00 05 00 00 00 02 00 03 00 00 00 00 00 00 00 00 29", 5, 0, 11, 6);
        row("16 07 00 01 01 00 08 00 00 00 02 00 03 FF FF FF FF 00 00 00 00 28", 8, -1, 11, 6);
        row("16 07 00 01 01 00 0C 00 00 00 02 00 03 00 00 00 00 00 00 00 00 30", 12, 0, 8, 3);
        row("16 07 00 01 01 FF FF 00 00 00 02 00 03 00 00 00 00 00 00 00 00 22", -1, 0, 5, 0);
    }

    void remoteReads()
    {
        QFETCH(int, type);
        RW_VAR var = variable(type, 2, 3);
        var.hostKey = 7;
        var.data = bytes("AB"); // a read carries none
        QFETCH(int, rmwStep);
        var.rmwStep = rmwStep;
        Remote_ReadVar(&var);
        QCOMPARE(PLC_driver.frameList.size(), 1);
        compareWithRow(PLC_driver.frameList.at(0));
    }

    void remoteWrites_data()
    {
        QTest::addColumn<int>("station");
        reply_columns();
        QTest::newRow("acknowledged")
            << 1 << bytes("18 07 01 01 01 00 08 00 00 00 0A 00 01 00 00 00 00 00 00 00 00 34 12 7B")
            << 8 << 0 << 0;
        QTest::newRow("station 0, no reply")
            << 0 << bytes("18 07 01 01 00 00 08 00 00 00 0A 00 01 00 00 00 00 00 00 00 00 34 12 7A")
            << 0 << 0 << 0;
    }

    void remoteWrites()
    {
        QFETCH(int, station);
        const RW_VAR var = writeOf(MEMORY_WORD, 10, 1, bytes("34 12"), 7, station);
        PLC_driver.lastFailed = true; // stored all the same
        Remote_WriteVar(&var);
        QCOMPARE(PLC_driver.frameList.size(), 1);
        compareWithRow(PLC_driver.frameList.at(0));
        QCOMPARE(stored(station, AREA_MEMORY).mid(20), bytes("34 12"));
    }

    void remoteFramesCarryEveryType()
    {
        RW_VAR var = writeOf(INPUT_WORD, 1, 1, QByteArray(300, '\x01'));
        var.address = 0x00010001;
        var.nodeId = 2;
        var.rwFlag = RW_READ; // as the record has it, value or not
        var.auxParam = 0x01020304;
        Remote_WriteVar(&var);
        const QByteArray frame = PLC_driver.frameList.at(0).frame;
        QCOMPARE(frame.mid(1, 10), bytes("00 00 02 01 00 06 00 01 00 01"));
        QCOMPARE(frame.size(), 322);
        QCOMPARE(frame.left(1), bytes("42")); // the length modulo 256
        QCOMPARE(frame.mid(17, 4), bytes("01 02 03 04"));
        QCOMPARE(stored(1, AREA_INPUT).mid(0x20002), bytes("01 01"));
    }
};

QTEST_APPLESS_MAIN(Requests)
#include "tst_requests.moc"
