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

    /// What no address text leads to; the rest is told by traces.
    void conversionAtTheEdges()
    {
        // type, address, length, and what they become
        const int rows[][6] = {{INPUT_BIT, -9, 3, 3, -1, 1},
                               {INPUT_BIT, -1, 1, 3, 0, 0},
                               {MEMORY_BYTE, -3, 2, 8, -1, 1},
                               {INPUT_BIT, 7, INT_MAX, 3, 0, 268435457},
                               {MEMORY_WORD, INT_MIN, 5, 8, INT_MIN, 5},
                               {-1, -7, -9, -1, -7, -9}};
        for (const auto& row : rows) {
            RW_VAR var = variable(row[0], row[1], row[2]);
            for (int pass = 0; pass < 2; ++pass) { // a native record stays as it is
                QCOMPARE(updateRwVar(&var), 0);
                QCOMPARE(var.regType, row[3]);
                QCOMPARE(var.address, row[4]);
                QCOMPARE(var.length, row[5]);
            }
        }
    }
};

QTEST_APPLESS_MAIN(Registers)
#include "tst_registers.moc"
