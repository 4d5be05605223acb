#include "check/Func_Check.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

class Registers : public QObject
{
    Q_OBJECT

private slots:
    void lookups()
    {
        // area code, type definition, bytes per element
        const int rows[][3] = {{3, 1, 1}, {4, 1, 1}, {8, 1, 1},  {3, 5, 1}, {4, 5, 1},
                               {8, 5, 1}, {3, 6, 2}, {4, 6, 2},  {8, 6, 2}, {3, 7, 4},
                               {4, 7, 4}, {8, 7, 4}, {12, 1, 1}, {13, 6, 2}};
        for (const int type : {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}) {
            const bool known = type >= 0 && type < 14;
            QCOMPARE(getPlcReg(type), known ? rows[type][0] : type);
            QCOMPARE(getRegisterTypeDefinition(type), known ? rows[type][1] : 0);
            QCOMPARE(getPlcStorageAddress(type), known ? rows[type][2] : 1);
        }
    }

    void conversion_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("nativeType");
        QTest::addColumn<int>("nativeAddress");
        QTest::addColumn<int>("nativeLength");
        const auto row = [](const char* name, int t, int a, int n, int nt, int na, int nn) {
            QTest::newRow(name) << t << a << n << nt << na << nn;
        };
        row("bits over a byte boundary", INPUT_BIT, 7, 2, 3, 0, 2);
        row("bits inside", INPUT_BIT, 12, 10, 3, 1, 2);
        row("bits fill a byte", OUTPUT_BIT, 8, 8, 4, 1, 1);
        row("bits straddle", OUTPUT_BIT, 9, 8, 4, 1, 2);
        row("memory bits", MEMORY_BIT, 20, 20, 8, 1, 2);
        row("memory bytes", MEMORY_BYTE, 3, 2, 8, 1, 2);
        row("special bits", SPECIAL_BIT, 17, 1, 12, 2, 1);
        row("special words", SPECIAL_WORD, 5, 7, 13, 5, 7);
        row("input bytes", INPUT_BYTE, 5, 7, 3, 5, 7);
        row("memory words", MEMORY_WORD, 5, 7, 8, 5, 7);
        row("words of a byte area", INPUT_WORD, 5, 3, 3, 10, 6);
        row("odd double word, bytes", OUTPUT_DWORD, 3, 3, 4, 12, 8);
        row("double word, words", MEMORY_DWORD, 5, 2, 8, 10, 2);
        row("half a double word, bytes", INPUT_DWORD, 0, 1, 3, 0, 4);
        row("half a double word, words", MEMORY_DWORD, 0, 1, 8, 0, 2);
        row("no bits, inside", INPUT_BIT, 3, 0, 3, 0, 1);
        row("no bits, at a start", INPUT_BIT, 8, 0, 3, 1, 0);
        row("no bytes, inside", MEMORY_BYTE, 5, 0, 8, 2, 1);
        row("no bytes, at a start", MEMORY_BYTE, 4, 0, 8, 2, 0);
        row("negative bit", INPUT_BIT, -9, 3, 3, -1, 1);
        row("one negative bit", INPUT_BIT, -1, 1, 3, 0, 0);
        row("address wraps", INPUT_DWORD, 0x40000000, 2, 3, 0, 4);
        row("length at its limit", INPUT_BIT, 7, INT_MAX, 3, 0, 268435457);
        row("unknown", 14, 7, 9, 14, 7, 9);
    }

    void conversion()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(int, length);
        RW_VAR var = variable(type, address, length);
        QCOMPARE(updateRwVar(&var), 0);
        QTEST(var.regType, "nativeType");
        QTEST(var.address, "nativeAddress");
        QTEST(var.length, "nativeLength");
        if (type != SPECIAL_BIT) { // which divides its address again each time
            updateRwVar(&var);
            QTEST(var.address, "nativeAddress");
            QTEST(var.length, "nativeLength");
        }
    }
};

QTEST_APPLESS_MAIN(Registers)
#include "tst_registers.moc"
