#include "check/Func_Check.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

class Sums : public QObject
{
    Q_OBJECT

    static unsigned short length(const QByteArray& frame)
    {
        return static_cast<unsigned short>(frame.size());
    }

private slots:
    void checkValues_data()
    {
        QTest::addColumn<QByteArray>("frame");
        QTest::addColumn<int>("crc");
        QTest::addColumn<int>("sum");
        QTest::addColumn<int>("lrc");
        QTest::newRow("123456789") << QByteArray("123456789") << 0x4B37 << 477 << 35;
        QTest::newRow("01 03 00 00 00 01") << bytes("010300000001") << 0x0A84 << 5 << 251;
        QTest::newRow("nothing") << QByteArray() << 0xFFFF << 0 << 256;
        QTest::newRow("80 80") << bytes("8080") << -1 << 256 << 256;
        QTest::newRow("300 times FF") << QByteArray(300, '\xFF') << -1 << 0x2AD4 << 44;
    }

    void checkValues()
    {
        QFETCH(QByteArray, frame);
        QFETCH(int, crc);
        if (crc >= 0)
            QCOMPARE(int{CalCRC(wireBytes(frame), length(frame))}, crc);
        QTEST(int{CalSUM(wireBytes(frame), length(frame))}, "sum");
        QTEST(CalLRC(wireBytes(frame), length(frame)), "lrc");
    }

    void crcAgreesWithBitByBit()
    {
        QByteArray frame;
        for (int size = 0; size < 300; ++size) {
            const int crc = crcOf(frame, size);
            QCOMPARE(QByteArray(1, static_cast<char>(crc & 0xFF)) + static_cast<char>(crc >> 8),
                     crcBytes(frame));
            frame.append(static_cast<char>(size * 37 + size / 7));
        }
    }

    void xorOfBytes()
    {
        const QByteArray frame = bytes("010204");
        QCOMPARE(int{CalXOR(wireBytes(frame), 3)}, 7);
        QCOMPARE(int{CalXOR(wireBytes(frame), 1)}, 1);
        QCOMPARE(int{CalXOR(wireBytes(frame), 0)}, 1);
        QCOMPARE(int{CalXOR(nullptr, 3)}, 0);
    }

    void hexDigits()
    {
        for (int value = 0; value < 16; ++value) {
            const int character = DigitalToASCII(value);
            QCOMPARE(character, int{"0123456789ABCDEF"[value]});
            QCOMPARE(ASCIIToDigital(character), value);
        }
        QCOMPARE(DigitalToASCII(16), 0x47);
        QCOMPARE(DigitalToASCII(-1), 0x2F);
        QCOMPARE(ASCIIToDigital('/'), 0);
        QCOMPARE(ASCIIToDigital('?'), 15);
        QCOMPARE(ASCIIToDigital('@'), 0);
        QCOMPARE(ASCIIToDigital('a'), 42);
        QCOMPARE(ASCIIToDigital(INT_MIN), 0);
        QVERIFY(DigitalToASCII(INT_MAX) < 0); // wraps, as the addition says
    }

    void replies_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("rwFlag");
        QTest::addColumn<int>("verdict");
        const QByteArray good = bytes("01 03 02 00 0A 38 43");
        QTest::newRow("read") << good << 7 << 0 << 1;
        QTest::newRow("write") << good << 7 << 1 << 2;
        QTest::newRow("neither") << good << 7 << 5 << 0;
        QTest::newRow("CRC the wrong way round") << bytes("01 03 02 00 0A 43 38") << 7 << 0 << 0;
        QTest::newRow("CRC low byte wrong") << bytes("01 03 02 00 0A 39 43") << 7 << 0 << 0;
        QTest::newRow("CRC high byte wrong") << bytes("01 03 02 00 0A 38 42") << 7 << 0 << 0;
        QTest::newRow("longer than the bytes") << good << 8 << 0 << 0;
        QTest::newRow("bytes beyond the length") << good + "junk" << 7 << 0 << 1;
        QTest::newRow("FF FF, the CRC of nothing") << bytes("FFFF") << 2 << 0 << 1;
        QTest::newRow("one byte") << bytes("FFFF") << 1 << 0 << 0;
        QTest::newRow("no bytes") << bytes("FFFF") << 0 << 0 << 0;
        QTest::newRow("fewer than none") << bytes("FFFF") << -1 << 0 << 0;
        QTest::newRow("smallest") << bytes("FFFF") << INT_MIN << 0 << 0;
    }

    void replies()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, length);
        QFETCH(int, rwFlag);
        resetDriver();
        PLC_driver.frameList.append(Protocol());
        PLC_driver.frameList[0].var.rwFlag = rwFlag;
        QTEST(CheckGetData(&reply, length), "verdict");
    }
};

QTEST_APPLESS_MAIN(Sums)
#include "tst_sums.moc"
