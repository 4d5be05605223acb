#include "data/write_pieces.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

class HostWrites : public QObject
{
    Q_OBJECT

    /// "address+length=data" of each pending write.
    static QString pending()
    {
        QStringList shown;
        for (const RW_VAR& var : PLC_driver.writeList)
            shown << QString::fromLatin1("%1+%2=").arg(var.address).arg(var.length) +
                         QString::fromLatin1(var.data.toHex());
        return shown.join(text(" "));
    }

private slots:
    void init() { resetDriver(); }

    void pieces_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("count");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("block");
        QTest::addColumn<QString>("queued");
        QTest::addColumn<QByteArray>("normalised");
        const auto row = [](const char* name, int type, const char* address, int count,
                            const char* value, int block, const char* queued,
                            const char* normalised) {
            QTest::newRow(name) << type << text(address) << count << bytes(value) << block
                                << text(queued) << bytes(normalised);
        };
        row("words", 8, "100", 3, "010002000300", 4, "100+2=01000200 102+1=0300", "010002000300");
        row("words, odd block", 8, "0", 4, "0100020003000400", 5, "0+3=010002000300 3+1=0400",
            "0100020003000400");
        row("words padded and cut", 8, "0", 2, "01", 100, "0+2=01000000", "01000000");
        row("words cut", 8, "0", 1, "0102030405", 100, "0+1=0102", "0102");
        row("double words", 11, "3", 4, "0102030405060708", 100, "6+4=0102030405060708",
            "0102030405060708");
        row("double words, uneven block", 11, "0", 6, "0102030405060708090A0B0C", 6,
            "0+4=0102030405060708 4+2=090a0b0c", "0102030405060708090A0B0C");
        row("half a double word is whole", 11, "1", 1, "0102", 100, "2+2=01020000", "01020000");
        row("output bytes", 4, "2", 3, "11AA22BB33CC", 2, "16+16=1122 32+8=33", "112233");
        row("output words", 7, "2", 2, "11223344", 3, "32+24=112233 56+8=44", "11223344");
        row("output double words", 10, "1", 2, "11223344", 100, "32+32=11223344", "11223344");
        row("output bits", 1, "1.2", 10, "01000101000000000101", 1, "10+10=0d03",
            "01000101000000000101");
        row("output bits, bit 0 counts", 1, "0.0", 2, "0302", 9, "0+2=01", "0302");
        row("output bits missing", 1, "0.0", 3, "01", 9, "0+3=01", "010000");
        row("no output bits", 1, "0.1", 0, "01", 9, "1+0=", "");
        row("fewer than no output bits", 1, "0.1", -9, "01", 9, "1+-9=", "");
        row("memory bits", 2, "2.5", 3, "0100", 9, "21+1=01 22+1=00 23+1=00", "010000");
        row("special bits", 12, "5", 2, "01FF07", 9, "5+1=01 6+1=ff", "01FF");
        row("memory bytes", 5, "7", 2, "AB00CD00", 9, "7+1=ab 8+1=cd", "ABCD");
        row("memory bytes missing", 5, "7", 2, "AB", 9, "7+1=ab 8+1=00", "AB00");
        row("no memory bits", 2, "0.0", 0, "01", 9, "", "");
        row("fewer than no words", 8, "0", INT_MIN, "01", 9, "", "");
        row("block 0 is one chunk", 8, "0", 3, "010002000300", 0, "0+3=010002000300",
            "010002000300");
        row("negative block", 4, "0", 2, "11002200", -3, "0+16=1122", "1122");
        row("largest block", 11, "0", 2, "01020304", INT_MAX, "0+2=01020304", "01020304");
    }

    void pieces()
    {
        QFETCH(int, type);
        QFETCH(QString, address);
        QFETCH(int, count);
        QFETCH(QByteArray, value);
        QFETCH(int, block);
        QFETCH(QString, queued);
        settings.maxBlockLength = block;
        QString label = text("label");
        const int result = SetRegisterData(&label, type, &address, 1, &value, count, 0, 0);
        QCOMPARE(pending(), queued);
        QCOMPARE(result, PLC_driver.writeList.size());
        QTEST(value, "normalised");
        for (const RW_VAR& var : PLC_driver.writeList)
            QCOMPARE(var.regType, type);
        QVERIFY(DataStorage.isEmpty()); // the encoder shows the value, not the queueing
    }

    void recordFields()
    {
        settings.remoteFraming = 2;
        settings.ownNode = 5;
        settings.stationPerVar = 0;
        settings.defaultStation = 3;
        QString label = text("setpoint");
        QString address = text("10");
        QByteArray value = bytes("3412");
        QCOMPARE(SetRegisterData(&label, MEMORY_WORD, &address, 8, &value, 1, 70, 71), 1);
        const RW_VAR& var = PLC_driver.writeList.at(0);
        QCOMPARE(var.hostKey, 70);
        QCOMPARE(var.hostSubKey, 71);
        QCOMPARE(var.rwFlag, int{RW_WRITE});
        QCOMPARE(var.remoteMode, 2);
        QCOMPARE(var.nodeId, 5);
        QCOMPARE(var.label, label);
        QCOMPARE(var.addressText, address);
        QCOMPARE(var.station, 3);
        QCOMPARE(var.rmwStep | var.auxParam | var.result, 0);
    }

    void refused_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("mode");
        const auto row = [](const char* name, int type, const char* address, int count, int mode) {
            QTest::newRow(name) << type << text(address) << count << mode;
        };
        row("input bit", 0, "0.0", 1, WRITE_QUEUE);
        row("input double word", 9, "0", 2, WRITE_QUEUE);
        row("special word", 13, "0", 1, WRITE_QUEUE);
        row("unknown type", 14, "0", 1, WRITE_QUEUE);
        row("negative type", -1, "0", 1, WRITE_QUEUE);
        row("no bit number", 2, "5", 1, WRITE_QUEUE);
        row("negative address", 8, "-5", 1, WRITE_STORE_ONLY);
        row("end beyond the image", 8, "8388607", 2, WRITE_QUEUE);
        row("end beyond the image, store only", 8, "8388607", 2, WRITE_STORE_ONLY);
        row("end beyond an int", 11, "2147483647", 2, WRITE_STORE_ONLY);
        row("more than any area holds", 4, "0", 1048577, WRITE_QUEUE);
        row("far more", 1, "0.0", INT_MAX, WRITE_STORE_ONLY);
    }

    void refused()
    {
        QFETCH(int, type);
        QFETCH(QString, address);
        QFETCH(int, count);
        QFETCH(int, mode);
        settings.writeMode = mode;
        QString label;
        QByteArray value = bytes("112233");
        QCOMPARE(SetRegisterData(&label, type, &address, 1, &value, count, 0, 0), 0);
        QCOMPARE(value, bytes("112233"));
        QVERIFY(DataStorage.isEmpty());
        QVERIFY(PLC_driver.writeList.isEmpty());
    }

    /// What is written in the write formats is read back in the read formats, for every type.
    void storeOnlyWriteLandsWhereReadsLook_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("count");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("readBack");
        const auto row = [](int type, const char* address, int count, const char* value,
                            const char* readBack) {
            QTest::newRow(REGISTER_TYPES[type].name)
                << type << text(address) << count << bytes(value) << bytes(readBack);
        };
        row(INPUT_BIT, "1.6", 3, "01 00 FF", "01 00 01");
        row(OUTPUT_BIT, "1.6", 3, "01 02 FF", "01 00 01");
        row(MEMORY_BIT, "1.6", 3, "01 00 FF", "01 00 01");
        row(INPUT_BYTE, "5", 2, "11 AA 22 BB", "11 22 00 00");
        row(OUTPUT_BYTE, "5", 2, "11 AA 22 BB", "11 22 00 00");
        row(MEMORY_BYTE, "5", 2, "11 AA 22 BB", "11 22 00 00");
        row(INPUT_WORD, "5", 2, "34 12 78 56", "34 12 78 56");
        row(OUTPUT_WORD, "5", 2, "34 12 78", "34 12 78 00");
        row(MEMORY_WORD, "5", 2, "34 12 78 56", "34 12 78 56");
        row(INPUT_DWORD, "5", 3, "01 02 03 04 05 06 07 08", "01 02 03 04 05 06 07 08");
        row(OUTPUT_DWORD, "5", 2, "01 02 03 04", "01 02 03 04");
        row(MEMORY_DWORD, "5", 2, "01 02 03 04", "01 02 03 04");
        row(SPECIAL_BIT, "17", 2, "01 01", "01 01");
        row(SPECIAL_WORD, "5", 1, "34 12", "34 12");
    }

    void storeOnlyWriteLandsWhereReadsLook()
    {
        QFETCH(int, type);
        QFETCH(QString, address);
        QFETCH(int, count);
        QFETCH(QByteArray, value);
        settings.writeMode = 1;
        settings.maxBlockLength = 1; // cuts nothing here
        QString label;
        const QByteArray before = value;
        QCOMPARE(SetRegisterData(&label, type, &address, 1, &value, count, 0, 0), 1);
        QCOMPARE(value, before);
        QVERIFY(PLC_driver.writeList.isEmpty());
        QByteArray out;
        QCOMPARE(GetRegisterData(0, type, &address, 1, &out, count), 1);
        QTEST(out, "readBack");
    }

    void storeOnlyWriteOfAnUnknownTypeDoesNothing()
    {
        settings.writeMode = WRITE_STORE_ONLY;
        QByteArray value = bytes("01");
        QCOMPARE(write(14, "0", value, 1), 1);
        QVERIFY(DataStorage.isEmpty());
    }

    void failingLineShowsTheValueAtOnce()
    {
        PLC_driver.lastFailed = true;
        QByteArray value = bytes("3412");
        QCOMPARE(write(OUTPUT_WORD, "1", value, 1), 1);
        QCOMPARE(stored(1, AREA_OUTPUT), bytes("00003412"));
    }

    void waitingWriteIsReplacedAndAFullListRefuses()
    {
        settings.maxBlockLength = 2;
        for (int i = 0; i < LIST_LIMIT; ++i) {
            RW_VAR fill = writeOf(i < 2 ? MEMORY_WORD : OUTPUT_BIT, 50 + i, 1, bytes("0000"));
            AddListWriteVar(&fill, ADD_UNCHANGED);
        }
        QByteArray value = bytes("0100 0200 0300");
        QCOMPARE(write(MEMORY_WORD, "50", value, 3), int{LIST_LIMIT});
        QCOMPARE(PLC_driver.writeList.at(0).data, bytes("0000")); // may be on the wire
        QCOMPARE(PLC_driver.writeList.at(1).data, bytes("0200"));
        QVERIFY(DataStorage.isEmpty());
        PLC_driver.lastFailed = true;
        QCOMPARE(write(MEMORY_WORD, "50", value, 3), int{LIST_LIMIT});
        QCOMPARE(stored(1, AREA_MEMORY).mid(100), bytes("0100 0200 0300"));
    }

    void aWriteOfMorePiecesThanTheListTakes()
    {
        QByteArray value(MAX_ELEMENTS, '\x01');
        QCOMPARE(write(MEMORY_BIT, "0.0", value, MAX_ELEMENTS), int{LIST_LIMIT});
        QCOMPARE(PLC_driver.writeList.last().address, LIST_LIMIT - 1);
        value.fill('\0');
        PLC_driver.writeList.last().address = 500000;
        QCOMPARE(write(MEMORY_BIT, "0.0", value, MAX_ELEMENTS), int{LIST_LIMIT});
        QCOMPARE(PLC_driver.writeList.last().data, bytes("00"));
    }

    void longestWriteIsTaken()
    {
        settings.writeMode = WRITE_STORE_ONLY;
        settings.stationPerVar = 2; // any value but 0 keeps the station
        QByteArray value(2 * MAX_ELEMENTS, '\x07');
        QCOMPARE(write(OUTPUT_BYTE, "0", value, MAX_ELEMENTS, 0, 5), 1);
        QCOMPARE(stored(5, AREA_OUTPUT), QByteArray(MAX_ELEMENTS, '\x07'));
    }

    void nullsAreRefused()
    {
        QString some = text("0");
        QByteArray value = bytes("3412");
        QCOMPARE(SetRegisterData(nullptr, 8, &some, 1, &value, 1, 0, 0), 0);
        QCOMPARE(SetRegisterData(&some, 8, nullptr, 1, &value, 1, 0, 0), 0);
        QCOMPARE(SetRegisterData(&some, 8, &some, 1, nullptr, 1, 0, 0), 0);
        QVERIFY(PLC_driver.writeList.isEmpty());
    }
};

QTEST_APPLESS_MAIN(HostWrites)
#include "tst_host_writes.moc"
