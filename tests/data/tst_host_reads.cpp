#include "support/driver.h"

#include <QtTest>

#include <climits>

class HostReads : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        resetDriver();
        QByteArray image;
        for (int i = 0; i < 24; ++i)
            image.append(static_cast<char>(0xA0 + i));
        DataStorage[1][AREA_INPUT] = image;
        DataStorage[1][AREA_MEMORY] = image;
    }

    void values_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("count");
        QTest::addColumn<QByteArray>("values");
        QTest::addColumn<int>("imageSize");
        const auto row = [](const char* name, int type, const char* address, int count,
                            const char* values, int imageSize) {
            QTest::newRow(name) << type << text(address) << count << bytes(values) << imageSize;
        };
        // Bytes A0 A1 A2 ... stand at 0 1 2 ...
        row("bits over a byte", MEMORY_BIT, "2.5", 5, "01 00 01 01 01", 41);
        row("bits beyond the image", INPUT_BIT, "30.0", 2, "00 00", 248);
        row("memory bytes", MEMORY_BYTE, "5", 2, "A5 A6 00 00", 24);
        row("words", MEMORY_WORD, "10", 2, "B4 B5 B6 B7", 28);
        row("words beyond the image", MEMORY_WORD, "11", 2, "B6 B7 00 00", 30);
        row("half a double word is whole", INPUT_DWORD, "2", 3, "A8 A9 AA AB AC AD AE AF", 24);
        row("double word", MEMORY_DWORD, "1", 2, "A4 A5 A6 A7", 24);
        row("words of a byte area", INPUT_WORD, "1", 1, "A2 A3", 24);
        row("no elements", MEMORY_WORD, "20", 0, "", 40);
        row("fewer than none", MEMORY_WORD, "20", -3, "", 28);
        row("far fewer than none", MEMORY_WORD, "20", INT_MIN, "", 24);
        row("last address", MEMORY_WORD, "8388607", 0, "", 16777214);
    }

    void values()
    {
        QFETCH(int, type);
        QFETCH(QString, address);
        QFETCH(int, count);
        QByteArray out("old");
        QCOMPARE(GetRegisterData(7, type, &address, 1, &out, count), 1);
        QTEST(out, "values");
        QTEST(stored(1, REGISTER_TYPES[type].area).size(), "imageSize");
    }

    void refused_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("zeros");
        const auto row = [](const char* name, int type, const char* address, int count, int zeros) {
            QTest::newRow(name) << type << text(address) << count << zeros;
        };
        row("no bit number", INPUT_BIT, "12", 3, 6);
        row("negative", MEMORY_WORD, "-5", 3, 6);
        row("no elements", MEMORY_WORD, "-5", 0, 0);
        row("fewer than none", MEMORY_WORD, "-5", INT_MIN, 0);
        row("zeros beyond the limit", MEMORY_WORD, "-5", 8388609, 0);
        row("end beyond the image", MEMORY_WORD, "8388607", 1, 2);
        row("start beyond the image", MEMORY_WORD, "8388609", 0, 0);
        row("offset beyond an int", MEMORY_DWORD, "2147483647", 2, 4);
        row("start beyond, fewer than none", MEMORY_DWORD, "2147483647", INT_MIN, 0);
        row("count at its limit", INPUT_BYTE, "0", INT_MAX, 0);
        row("unknown type", 14, "16777217", 1, 2);
    }

    void refused()
    {
        QFETCH(int, type);
        QFETCH(QString, address);
        QFETCH(int, count);
        QFETCH(int, zeros);
        const QMap<int, QMap<int, QByteArray>> before = DataStorage;
        QByteArray out("old");
        QCOMPARE(GetRegisterData(0, type, &address, 2, &out, count), 0);
        QCOMPARE(out, QByteArray(zeros, '\0'));
        QCOMPARE(DataStorage, before);
    }

    void stationIsUsedAsGiven()
    {
        settings.stationPerVar = 0;
        settings.defaultStation = 1;
        QByteArray out;
        QCOMPARE(read(MEMORY_WORD, "0", 1, out, 7), 1);
        QCOMPARE(out, bytes("0000"));
        QVERIFY(DataStorage.contains(7));
    }

    void unknownTypeGainsAnEmptyResult()
    {
        QByteArray out("old");
        QCOMPARE(read(14, "3", 2, out), 1);
        QVERIFY(out.isEmpty());
        QCOMPARE(stored(1, 14).size(), 11);
    }

    void nullsAreRefused()
    {
        QString address = text("1");
        QByteArray out("old");
        QCOMPARE(GetRegisterData(0, 8, &address, 1, nullptr, 1), 0);
        QCOMPARE(GetRegisterData(0, 8, nullptr, 1, &out, 1), 0);
        QCOMPARE(out, bytes("0000"));
    }
};

QTEST_APPLESS_MAIN(HostReads)
#include "tst_host_reads.moc"
