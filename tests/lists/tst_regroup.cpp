#include "lists/Func_Initi.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

class Regroup : public QObject
{
    Q_OBJECT

    static VAR_DESC describe(int type, const QString& address, int length, int station = 1)
    {
        VAR_DESC desc = VAR_DESC();
        desc.regType = static_cast<unsigned char>(type);
        desc.station = static_cast<unsigned char>(station);
        desc.addressText = address;
        desc.label = QString::fromLatin1("label of ") + address;
        desc.length = length;
        return desc;
    }

    /// Memory words from "address+length address+length".
    static QList<VAR_DESC> words(const QString& listed)
    {
        QList<VAR_DESC> vars;
        for (const QString& entry : listed.split(QLatin1Char(' '))) {
            const QStringList parts = entry.split(QLatin1Char('+'));
            vars << describe(MEMORY_WORD, parts.at(0), parts.at(1).toInt());
        }
        return vars;
    }

    static QString blocks(const QList<RW_VAR>& list)
    {
        QStringList shown;
        for (const RW_VAR& var : list)
            shown << QString::fromLatin1("%1+%2").arg(var.address).arg(var.length);
        return shown.join(text(" "));
    }

private slots:
    void init() { resetDriver(); }

    void merging_data()
    {
        QTest::addColumn<int>("limit");
        QTest::addColumn<QString>("vars");
        QTest::addColumn<QString>("entries");
        const auto row = [](const char* name, int limit, const char* vars, const char* entries) {
            QTest::newRow(name) << limit << text(vars) << text(entries);
        };
        row("adjoining", 10, "0+5 5+5", "0+10");
        row("overlapping", 10, "0+5 3+4", "0+7");
        row("nested", 10, "0+8 2+3", "0+8");
        row("nested in a full first piece", 10, "0+10 2+3", "0+10 2+3");
        row("gap bridged", 10, "0+5 8+4", "0+10 10+2");
        row("gap just bridged", 10, "0+5 10+5", "0+10 10+5");
        row("gap too wide", 10, "0+5 11+5", "0+5 11+5");
        row("first block cut before merging", 10, "0+25 26+3", "0+10 10+10 20+9");
        row("empty rest replaced", 10, "0+10 12+3", "0+10 12+3");
        row("only the first block is cut early", 10, "0+1 20+10 22+3", "0+1 20+10");
        row("sorted", 10, "8+2 0+2", "0+10");
        row("limit 0 bridges nothing", 0, "0+25 25+3 30+2", "0+28 30+2");
        row("negative limit", -7, "0+25 26+3", "0+25 26+3");
        row("limit beyond every length", INT_MAX, "0+5 900000+5", "0+900005");
        row("up to the last address", INT_MAX, "0+5 2147483640+7", "0+2147483647");
        row("beyond the last address left out", 10, "0+5 2147483640+8", "0+5");
        row("no length", 10, "3+0 7+0", "");
        row("negative length left out", 10, "3+-5 7+2", "7+2");
        row("longer than any area left out", 0, "0+1048577 7+2", "7+2");
        row("as long as any area", 0, "0+1048576 7+2", "0+1048576");
    }

    void merging()
    {
        QFETCH(int, limit);
        QFETCH(QString, vars);
        settings.maxBlockLength = limit;
        QList<VAR_DESC> descriptions = words(vars);
        const int size = ReCreatReadVarList(&descriptions);
        QTEST(blocks(PLC_driver.readList), "entries");
        QCOMPARE(size, PLC_driver.readList.size());
    }

    void wrappingAddressesAreLeftOut()
    {
        QList<VAR_DESC> vars;
        vars << describe(INPUT_WORD, text("2147483647"), 1) << describe(INPUT_BYTE, text("0"), 5);
        QCOMPARE(ReCreatReadVarList(&vars), 1);
        QCOMPARE(blocks(PLC_driver.readList), text("0+5"));
    }

    void entriesAreOrderedByStationAreaAndAddress()
    {
        QList<VAR_DESC> vars;
        vars << describe(SPECIAL_WORD, text("1"), 1, 2) << describe(SPECIAL_BIT, text("8"), 8, 1)
             << describe(MEMORY_WORD, text("40"), 1, 1) << describe(MEMORY_WORD, text("3"), 1, 1)
             << describe(OUTPUT_BYTE, text("1"), 1, 1) << describe(INPUT_BIT, text("2.1"), 1, 1)
             << describe(INPUT_BIT, text("0.3"), 1, 1) << describe(INPUT_BYTE, text("9"), 1, 0)
             << describe(INPUT_BIT, text("9"), 1, 1) << describe(200, text("5"), 1, 1);
        QCOMPARE(ReCreatReadVarList(&vars), 7);
        QStringList shown;
        for (const RW_VAR& var : PLC_driver.readList)
            shown << QString::fromLatin1("%1/%2").arg(var.station).arg(var.regType);
        QCOMPARE(shown.join(text(" ")), text("1/3 1/4 1/8 1/8 1/12 1/200 2/13"));
        QCOMPARE(blocks(PLC_driver.readList), text("0+3 1+1 3+1 40+1 1+1 5+1 1+1"));
    }

    void entriesCarryTheFirstVariable()
    {
        settings.remoteFraming = 3;
        settings.ownNode = 6;
        settings.stationPerVar = 0;
        settings.defaultStation = 9;
        QList<VAR_DESC> vars = words(text("12+1 0+15"));
        QCOMPARE(ReCreatReadVarList(&vars), 2);
        for (const RW_VAR& entry : PLC_driver.readList) {
            QCOMPARE(entry.label, text("label of 0"));
            QCOMPARE(entry.addressText, text("0"));
            QCOMPARE(entry.hostKey, 0);
            QCOMPARE(entry.hostSubKey, -1);
            QCOMPARE(entry.rwFlag, 0);
            QCOMPARE(entry.remoteMode, 3);
            QCOMPARE(entry.nodeId, 6);
            QCOMPARE(entry.result, 0);
            QCOMPARE(entry.station, 9);
            QCOMPARE(entry.rmwStep, 0);
            QVERIFY(entry.data.isEmpty());
        }
        QCOMPARE(blocks(PLC_driver.readList), text("0+10 10+5"));
    }

    void scanBookkeepingRestartsWithVariablesOnly()
    {
        RW_VAR before = variable(MEMORY_WORD, 0, 1);
        AddListReadVar(&before);
        PLC_driver.scanCount = 3;
        settings.scanDone = 1;
        QList<VAR_DESC> none;
        QCOMPARE(ReCreatReadVarList(&none), 0);
        QVERIFY(PLC_driver.readList.isEmpty());
        QCOMPARE(PLC_driver.scanCount, 3);
        QCOMPARE(settings.scanDone, 1);
        QList<VAR_DESC> rejected;
        rejected << describe(INPUT_BIT, text("no"), 20) << describe(MEMORY_WORD, text("-5"), 9);
        QCOMPARE(ReCreatReadVarList(&rejected), 0);
        QCOMPARE(PLC_driver.scanCount, 0);
        QCOMPARE(settings.scanDone, 0);
    }

    void equalAddressesKeepTheirOrder()
    {
        QList<RW_VAR> list;
        for (int i = 0; i < 300; ++i) {
            list << variable(MEMORY_WORD, 7 - i % 5, 1);
            list.last().hostKey = i;
        }
        Bubble_Sort(&list);
        for (int i = 1; i < list.size(); ++i) {
            QVERIFY(list.at(i - 1).address <= list.at(i).address);
            if (list.at(i - 1).address == list.at(i).address)
                QVERIFY(list.at(i - 1).hostKey < list.at(i).hostKey);
        }
    }

    void oneVariableIsCut_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("limit");
        QTest::addColumn<QString>("pieces");
        QTest::addColumn<QString>("record");
        const auto row = [](const char* name, int length, int limit, const char* pieces,
                            const char* record) {
            QTest::newRow(name) << length << limit << text(pieces) << text(record);
        };
        row("short enough", 10, 10, "5+77", "5+77"); // as it stands
        row("rest", 25, 10, "5+10 15+10 25+5", "25+5");
        row("even", 20, 10, "5+10 15+10", "15+10");
        row("no limit", 25, 0, "5+77", "5+77");
        row("negative limit", 25, -1, "5+77", "5+77");
        row("negative length", -1, 10, "", "5+77");
        row("longer than any area", 1048577, 1, "", "5+77");
        row("longer than any area, whole", 1048577, 1048577, "5+77", "5+77");
        row("longer than any area, no limit", 1048577, 0, "5+77", "5+77");
    }

    void oneVariableIsCut()
    {
        QFETCH(int, length);
        QFETCH(int, limit);
        RW_VAR var = variable(MEMORY_WORD, 5, 77);
        QList<RW_VAR> out;
        WhetherGroup(length, limit, &var, &out);
        QTEST(blocks(out), "pieces");
        QTEST(blocks(QList<RW_VAR>() << var), "record");
    }
};

QTEST_APPLESS_MAIN(Regroup)
#include "tst_regroup.moc"
