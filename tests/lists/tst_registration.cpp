#include "support/driver.h"

#include <QtTest>

#include <climits>

class Registration : public QObject
{
    Q_OBJECT

    static RW_VAR oneShot(int type, const char* address, int length, int station = 1)
    {
        RW_VAR var = variable(type, 0, length, station);
        var.addressText = text(address);
        var.rmwStep = RMW_READ_STEP;
        var.auxParam = 5;
        return var;
    }

    /// "type:address+length" of each entry.
    static QStringList shape(const QList<RW_VAR>& list)
    {
        QStringList entries;
        for (const RW_VAR& var : list)
            entries << QString::fromLatin1("%1:%2+%3")
                           .arg(var.regType)
                           .arg(var.address)
                           .arg(var.length);
        return entries;
    }

private slots:
    void init() { resetDriver(); }

    void cyclicReadsAreTakenAsTheyStand()
    {
        RW_VAR var = variable(INPUT_BIT, 99, 20);
        var.data = bytes("01");
        QCOMPARE(AddListReadVar(&var), 1);
        QCOMPARE(AddListReadVar(&var), 2);
        QCOMPARE(shape(PLC_driver.readList), QStringList() << text("0:99+20") << text("0:99+20"));
        QCOMPARE(PLC_driver.readList.at(0).data, bytes("01"));
    }

    void writesReplacePendingOnesButNeverTheHead()
    {
        RW_VAR first = writeOf(MEMORY_WORD, 10, 1, bytes("0100"), 1);
        RW_VAR second = writeOf(MEMORY_WORD, 10, 1, bytes("0200"), 2);
        RW_VAR third = writeOf(MEMORY_WORD, 10, 1, bytes("0300"), 3);
        third.label = text("newest");
        QCOMPARE(AddListWriteVar(&first, ADD_CHECKED), 1);
        QCOMPARE(AddListWriteVar(&second, ADD_CHECKED), 2);
        QCOMPARE(AddListWriteVar(&third, ADD_CHECKED), 2);
        QCOMPARE(PLC_driver.writeList.at(0).data, bytes("0100"));
        QCOMPARE(PLC_driver.writeList.at(1).data, bytes("0300"));
        QCOMPARE(PLC_driver.writeList.at(1).hostKey, 3);
        QCOMPARE(PLC_driver.writeList.at(1).label, text("newest"));
    }

    void writesToAnotherTargetAreAppended_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("station");
        QTest::addColumn<int>("mode");
        QTest::newRow("type") << 11 << 10 << 1 << 1 << 0;
        QTest::newRow("address") << 8 << 11 << 1 << 1 << 0;
        QTest::newRow("length") << 8 << 10 << 2 << 1 << 0;
        QTest::newRow("station") << 8 << 10 << 1 << 2 << 0;
        QTest::newRow("unchanged mode") << 8 << 10 << 1 << 1 << 1;
    }

    void writesToAnotherTargetAreAppended()
    {
        QFETCH(int, type);
        QFETCH(int, address);
        QFETCH(int, length);
        QFETCH(int, station);
        QFETCH(int, mode);
        RW_VAR pending = writeOf(MEMORY_WORD, 10, 1, bytes("0100"));
        AddListWriteVar(&pending, ADD_UNCHANGED);
        AddListWriteVar(&pending, ADD_UNCHANGED);
        RW_VAR other = writeOf(type, address, length, bytes("0200"), 0, station);
        QCOMPARE(AddListWriteVar(&other, mode), 3);
    }

    void firstOfSeveralEqualWritesIsReplaced()
    {
        for (int key = 0; key < 3; ++key) {
            RW_VAR var = writeOf(MEMORY_WORD, 10, 1, bytes("0100"), key);
            AddListWriteVar(&var, ADD_UNCHANGED);
        }
        RW_VAR newest = writeOf(MEMORY_WORD, 10, 1, bytes("0200"), 9);
        QCOMPARE(AddListWriteVar(&newest, 2), 3); // any mode but 1 is checked
        QCOMPARE(PLC_driver.writeList.at(1).hostKey, 9);
        QCOMPARE(PLC_driver.writeList.at(2).hostKey, 2);
    }

    void fullListsRefuse()
    {
        for (int i = 0; i < 1024; ++i) {
            RW_VAR fill = writeOf(MEMORY_WORD, i, 1, bytes("0100"));
            QCOMPARE(AddListWriteVar(&fill, ADD_CHECKED), i + 1);
            fill = oneShot(MEMORY_WORD, "7", 1);
            fill.hostKey = i;
            QCOMPARE(AddListOnceReadVar(&fill, ADD_CHECKED), i + 1);
        }
        RW_VAR late = writeOf(MEMORY_WORD, 5000, 1, bytes("0100"));
        QCOMPARE(AddListWriteVar(&late, ADD_CHECKED), 1024);
        QCOMPARE(AddListWriteVar(&late, ADD_UNCHANGED), 1025);
        RW_VAR replacing = writeOf(MEMORY_WORD, 7, 1, bytes("0700"));
        QCOMPARE(AddListWriteVar(&replacing, ADD_CHECKED), 1025);
        QCOMPARE(PLC_driver.writeList.at(7).data, bytes("0700"));

        RW_VAR lateRead = oneShot(MEMORY_WORD, "5000", 1);
        QCOMPARE(AddListOnceReadVar(&lateRead, 2), 1024);
        QCOMPARE(AddListOnceReadVar(&lateRead, ADD_UNCHANGED), 1025);
    }

    void oneShotReadsAreConvertedAndCut_data()
    {
        QTest::addColumn<int>("limit");
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("queued");
        QTest::addColumn<QString>("record");
        const auto row = [](const char* name, int limit, int length, const char* queued,
                            const char* record) {
            QTest::newRow(name) << limit << length << text(queued) << text(record);
        };
        // INPUT_BIT at bit 99: byte 12, bit 3
        row("rest", 2, 20, "3:12+2 3:14+1", "3:14+1");
        row("even", 2, 28, "3:12+2 3:14+2", "3:14+2");
        row("one piece", 10, 20, "3:12+3", "3:12+3");
        row("limit 0 is one piece", 0, 20, "3:12+3", "3:12+3");
        row("negative limit beyond the length", -10, 20, "3:12+3", "3:12+3");
        row("negative limit", -2, 20, "", "3:12+3");
        row("smallest limit", INT_MIN, 20, "3:12+3", "3:12+3");
        row("negative length", 2, -3, "", "3:12+0");
    }

    void oneShotReadsAreConvertedAndCut()
    {
        QFETCH(int, limit);
        QFETCH(int, length);
        settings.maxBlockLength = limit;
        RW_VAR var = oneShot(INPUT_BIT, "12.3", length);
        const int size = AddListOnceReadVar(&var, ADD_CHECKED);
        QCOMPARE(size, PLC_driver.onceReadList.size());
        QTEST(shape(PLC_driver.onceReadList).join(text(" ")), "queued");
        QTEST(shape(QList<RW_VAR>() << var).at(0), "record");
        QCOMPARE(var.rmwStep, 0);
        QCOMPARE(var.auxParam, 0);
    }

    void oneShotReadsAreQueuedOnce_data()
    {
        QTest::addColumn<int>("hostKey");
        QTest::addColumn<int>("hostSubKey");
        QTest::addColumn<int>("station");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("queued");
        QTest::newRow("the same") << 0 << 0 << 1 << 3 << text("12") << 3 << 2;
        QTest::newRow("key") << 1 << 0 << 1 << 3 << text("12") << 3 << 4;
        QTest::newRow("second key") << 0 << 1 << 1 << 3 << text("12") << 3 << 4;
        QTest::newRow("station") << 0 << 0 << 2 << 3 << text("12") << 3 << 4;
        QTest::newRow("type") << 0 << 0 << 1 << 4 << text("12") << 3 << 4;
        QTest::newRow("address") << 0 << 0 << 1 << 3 << text("13") << 3 << 4;
        QTest::newRow("longer second piece") << 0 << 0 << 1 << 3 << text("12") << 4 << 3;
    }

    void oneShotReadsAreQueuedOnce()
    {
        settings.maxBlockLength = 2;
        RW_VAR first = oneShot(INPUT_BYTE, "12", 3);
        QCOMPARE(AddListOnceReadVar(&first, ADD_CHECKED), 2);
        QFETCH(int, type);
        QFETCH(QString, address);
        QFETCH(int, length);
        QFETCH(int, station);
        QFETCH(int, hostKey);
        QFETCH(int, hostSubKey);
        RW_VAR second = oneShot(type, "0", length, station);
        second.addressText = address;
        second.hostKey = hostKey;
        second.hostSubKey = hostSubKey;
        QTEST(AddListOnceReadVar(&second, ADD_CHECKED), "queued");
    }

    void countsThatReadNothing_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("address");
        QTest::addColumn<int>("length");
        QTest::newRow("none") << int{MEMORY_WORD} << text("7") << 0;
        QTest::newRow("negative") << int{MEMORY_WORD} << text("7") << -3;
        QTest::newRow("negative, rounded up to a byte") << int{INPUT_BIT} << text("0.7") << -1;
        QTest::newRow("wraps to a negative") << int{INPUT_WORD} << text("7") << 0x40000000;
    }

    void countsThatReadNothing()
    {
        QFETCH(int, type);
        QFETCH(QString, address);
        QFETCH(int, length);
        settings.maxBlockLength = 0;
        RW_VAR var = oneShot(type, "0", length);
        var.addressText = address;
        QCOMPARE(AddListOnceReadVar(&var, ADD_CHECKED), 0);
        QVERIFY(PLC_driver.onceReadList.isEmpty());
    }

    void oneShotReadsAreRejected()
    {
        RW_VAR badAddress = oneShot(INPUT_BIT, "12", 1);
        QCOMPARE(AddListOnceReadVar(&badAddress, ADD_CHECKED), 0);
        QCOMPARE(badAddress.rmwStep, int{RMW_READ_STEP}); // nothing has changed
        RW_VAR noStation = oneShot(INPUT_BYTE, "12", 1, 0);
        QCOMPARE(AddListOnceReadVar(&noStation, ADD_CHECKED), 0);
        settings.stationPerVar = 0;
        RW_VAR defaulted = oneShot(INPUT_BYTE, "12", 1, 7);
        QCOMPARE(AddListOnceReadVar(&defaulted, ADD_CHECKED), 0);
        QCOMPARE(defaulted.station, 0);
        settings.defaultStation = 4;
        QCOMPARE(AddListOnceReadVar(&defaulted, ADD_CHECKED), 1);
        QCOMPARE(PLC_driver.onceReadList.at(0).station, 4);
    }

    void hugeOneShotReadEndsWithTheList()
    {
        settings.maxBlockLength = 1;
        RW_VAR huge = oneShot(MEMORY_WORD, "0", INT_MAX);
        QCOMPARE(AddListOnceReadVar(&huge, ADD_CHECKED), LIST_LIMIT);
        QCOMPARE(huge.address, INT_MAX - 1);
        QCOMPARE(huge.length, 1);
    }
};

QTEST_APPLESS_MAIN(Registration)
#include "tst_registration.moc"
