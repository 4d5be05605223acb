#include "lists/Func_Initi.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

class Address : public QObject
{
    Q_OBJECT

private slots:
    void texts_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("addressText");
        QTest::addColumn<int>("address");
        const auto row = [](int type, const char* addressText, int address) {
            QTest::newRow(addressText) << type << text(addressText) << address;
        };
        row(INPUT_BIT, "12.3", 99);
        row(INPUT_BIT, "0.0", 0);
        row(INPUT_BIT, "1.9", 17);
        row(OUTPUT_BIT, "12", -1);
        row(OUTPUT_BIT, "1.2.3", -1);
        row(OUTPUT_BIT, "", -1);
        row(MEMORY_BIT, ".", 0);
        row(MEMORY_BIT, "5.", 40);
        row(MEMORY_BIT, ".7", 7);
        row(MEMORY_BIT, "x.3", 3);
        row(INPUT_BIT, "-1.3", -5);
        row(INPUT_BIT, "268435456.0", INT_MIN); // wraps
        row(INPUT_BIT, "2147483648.1", 1);      // no int: counts as 0
        row(MEMORY_WORD, "100", 100);
        row(MEMORY_WORD, "abc", 0);
        row(MEMORY_WORD, "1.5", 0);
        row(MEMORY_WORD, "-5", -5);
        row(SPECIAL_BIT, "17", 17);
        row(SPECIAL_BIT, "2.1", 0);
        row(-1, "33", 33);
        row(14, "34", 34);
    }

    void texts()
    {
        QFETCH(int, type);
        QFETCH(QString, addressText);
        QTEST(StringAddressToInt(type, addressText), "address");
        QTEST(PLCAddressChangeIntef(type, addressText), "address");
    }
};

QTEST_APPLESS_MAIN(Address)
#include "tst_address.moc"
