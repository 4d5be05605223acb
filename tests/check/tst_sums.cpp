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
    void checkValues()
    {
        const struct {
            QByteArray frame;
            int crc, sum, lrc;
        } rows[] = {{"123456789", 0x4B37, 477, 35},
                    {bytes("01 03 00 00 00 01"), 0x0A84, 5, 251},
                    {QByteArray(), 0xFFFF, 0, 256},
                    {bytes("80 80"), 0xD061, 256, 256},
                    {QByteArray(300, '\xFF'), 0xDB30, 0x2AD4, 44}};
        for (const auto& row : rows) {
            QCOMPARE(int{CalCRC(wireBytes(row.frame), length(row.frame))}, row.crc);
            QCOMPARE(int{CalSUM(wireBytes(row.frame), length(row.frame))}, row.sum);
            QCOMPARE(CalLRC(wireBytes(row.frame), length(row.frame)), row.lrc);
        }
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

    void replies()
    {
        const QByteArray good = bytes("01 03 02 00 0A 38 43");
        const struct {
            QByteArray reply;
            int length, rwFlag, verdict;
        } rows[] = {{good, 7, 0, 1},
                    {good, 7, 1, 2},
                    {good, 7, 5, 0},
                    {bytes("01 03 02 00 0A 43 38"), 7, 0, 0}, // CRC the wrong way round
                    {bytes("01 03 02 00 0A 39 43"), 7, 0, 0},
                    {bytes("01 03 02 00 0A 38 42"), 7, 0, 0},
                    {good, 8, 0, 0},          // longer than the bytes
                    {good + "junk", 7, 0, 1}, // bytes beyond the length
                    {bytes("FFFF"), 2, 0, 1}, // the CRC of nothing
                    {bytes("FFFF"), 1, 0, 0},
                    {bytes("FFFF"), 0, 0, 0},
                    {bytes("FFFF"), -1, 0, 0},
                    {bytes("FFFF"), INT_MIN, 0, 0}};
        resetDriver();
        PLC_driver.frameList.append(Protocol());
        for (const auto& row : rows) {
            PLC_driver.frameList[0].var.rwFlag = row.rwFlag;
            QCOMPARE(CheckGetData(&row.reply, row.length), row.verdict);
        }
    }
};

QTEST_APPLESS_MAIN(Sums)
#include "tst_sums.moc"
