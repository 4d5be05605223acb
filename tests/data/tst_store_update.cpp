#include "data/Func_GetOrSetData.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

class StoreUpdate : public QObject
{
    Q_OBJECT

private slots:
    void init() { resetDriver(); }

    /// Into an image of 8 bytes FF, so that cleared bits show.
    void records_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("length");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("image");
        const auto row = [](const char* name, int type, int address, int length, const char* data,
                            const char* image) {
            QTest::newRow(name) << type << address << length << bytes(data) << bytes(image);
        };
        row("output bits", OUTPUT_BIT, 13, 3, "05", "FF BF FF FF FF FF FF FF");
        row("output bits over bytes", OUTPUT_WORD, 4, 16, "34 12", "4F 23 F1 FF FF FF FF FF");
        row("output bits missing", OUTPUT_BYTE, 0, 16, "55", "55 00 FF FF FF FF FF FF");
        row("output bits grow", OUTPUT_BIT, 65, 1, "01", "FF FF FF FF FF FF FF FF 02");
        row("memory bit", MEMORY_BIT, 21, 1, "00", "FF FF DF FF FF FF FF FF");
        row("any nonzero byte is 1", MEMORY_BIT, 64, 3, "80 00 01", "FF FF FF FF FF FF FF FF 05");
        row("input bits", INPUT_BIT, 7, 2, "00 00", "7F FE FF FF FF FF FF FF");
        row("special bits missing", SPECIAL_BIT, 3, 2, "01", "EF FF FF FF FF FF FF FF");
        row("bytes", MEMORY_BYTE, 3, 2, "11 22", "FF FF FF 11 22 FF FF FF");
        row("words", MEMORY_WORD, 1, 1, "34 12", "FF FF 34 12 FF FF FF FF");
        row("words missing", MEMORY_WORD, 1, 2, "34 12 56", "FF FF 34 12 56 00 FF FF");
        row("input words", INPUT_WORD, 3, 1, "34 12", "FF FF FF FF FF FF 34 12");
        row("double words by word address", MEMORY_DWORD, 1, 2, "78 56 34 12",
            "FF FF 78 56 34 12 FF FF");
        row("half a double word is whole", INPUT_DWORD, 0, 1, "78 56 34 12",
            "78 56 34 12 FF FF FF FF");
        row("double words grow, the gap is 0", MEMORY_DWORD, 5, 1, "78 56 34 12",
            "FF FF FF FF FF FF FF FF 00 00 78 56 34 12");
        row("no length", MEMORY_WORD, 1, 0, "34 12", "FF FF FF FF FF FF FF FF");
        row("negative length", OUTPUT_BIT, 1, INT_MIN, "00", "FF FF FF FF FF FF FF FF");
        row("before the image", MEMORY_WORD, -1, 2, "34 12 34 12", "FF FF FF FF FF FF FF FF");
        row("bits before the image", MEMORY_BIT, -1, 2, "00 00", "FF FF FF FF FF FF FF FF");
        row("far beyond", MEMORY_DWORD, INT_MAX, INT_MAX, "00", "FF FF FF FF FF FF FF FF");
        row("bits far beyond", OUTPUT_BIT, INT_MAX, INT_MAX, "00", "FF FF FF FF FF FF FF FF");
    }

    void records()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(int, length);
        QFETCH(QByteArray, data);
        const int area = REGISTER_TYPES[type].area;
        DataStorage[1][area] = QByteArray(8, '\xFF');
        const RW_VAR var = writeOf(type, address, length, data);
        WriteDataToLocal(&var);
        QTEST(stored(1, area), "image");
    }

    void nothingToStoreCreatesNoImage_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("length");
        QTest::newRow("no length") << 8 << 0 << 0;
        QTest::newRow("unknown type") << 14 << 0 << 1;
        QTest::newRow("before the image") << 8 << -1 << 1;
        QTest::newRow("beyond the image") << 5 << MAX_IMAGE_BYTES << 1;
    }

    void nothingToStoreCreatesNoImage()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(int, length);
        const RW_VAR var = writeOf(type, address, length, bytes("0101"));
        WriteDataToLocal(&var);
        QVERIFY(DataStorage.isEmpty());
    }
};

QTEST_APPLESS_MAIN(StoreUpdate)
#include "tst_store_update.moc"
