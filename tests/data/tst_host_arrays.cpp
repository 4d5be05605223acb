#include "support/driver.h"

#include <QtTest>

/// The arrays that the runtime hands in: used before, shared, or showing memory of its own.
class HostArrays : public QObject
{
    Q_OBJECT

    static constexpr char FILL = '\x5A';

private slots:
    void init() { resetDriver(); }

    void readsIntoAnyArray_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("count");
        QTest::newRow("bits from the middle of a byte") << int{MEMORY_BIT} << text("1.3") << 30;
        QTest::newRow("bits of whole bytes") << int{MEMORY_BIT} << text("2.0") << 16;
        QTest::newRow("bits within a byte") << int{MEMORY_BIT} << text("3.1") << 2;
        QTest::newRow("bytes, with their zeros") << int{MEMORY_BYTE} << text("3") << 9;
        QTest::newRow("words") << int{MEMORY_WORD} << text("2") << 5;
        QTest::newRow("half a double word more") << int{MEMORY_DWORD} << text("1") << 5;
        QTest::newRow("nothing") << int{MEMORY_WORD} << text("2") << 0;
    }

    void readsIntoAnyArray()
    {
        QFETCH(int, type);
        QFETCH(QString, address);
        QFETCH(int, count);
        DataStorage[1][AREA_MEMORY] = bytes("0123456789ABCDEF1032547698BADCFE55AA33CC");
        QByteArray expected;
        QCOMPARE(GetRegisterData(0, type, &address, 1, &expected, count), 1);
        QVERIFY(count == 0 || expected.count('\0') < expected.size());
        for (const int size :
             {0, 1, expected.size() - 1, expected.size(), expected.size() + 1, 99}) {
            const QByteArray filled(std::max(size, 0), FILL);
            QByteArray used = QByteArray(filled.constData(), filled.size());
            QByteArray shared = filled;
            QByteArray raw = QByteArray::fromRawData(filled.constData(), filled.size());
            for (QByteArray* out : {&used, &shared, &raw}) {
                QCOMPARE(GetRegisterData(0, type, &address, 1, out, count), 1);
                QCOMPARE(*out, expected);
            }
            QCOMPARE(filled.count(FILL), filled.size());
        }
    }

    /// What is queued is the value of the call, whatever happens to the runtime's memory after it.
    void queuesWhatItWasHanded()
    {
        char memory[] = {'\x12', '\x34', '\x56', '\x78'};
        const QByteArray handed(memory, sizeof memory);
        QByteArray raw = QByteArray::fromRawData(memory, sizeof memory);
        QByteArray own(memory, sizeof memory);
        QCOMPARE(write(MEMORY_WORD, "10", raw, 2), 1);
        QCOMPARE(write(MEMORY_WORD, "20", own, 2), 2);
        std::fill(std::begin(memory), std::end(memory), FILL);
        own.fill(FILL);
        QCOMPARE(PLC_driver.writeList.at(0).data, handed);
        QCOMPARE(PLC_driver.writeList.at(1).data, handed);
    }
};

QTEST_APPLESS_MAIN(HostArrays)
#include "tst_host_arrays.moc"
