#include "driver/Communication_Protocol.h"
#include "support/driver.h"

#include <QtTest>

#include <cstring>

class Setup : public QObject
{
    Q_OBJECT

private slots:
    void aDriverNeverUsedIsEmpty()
    {
        QVERIFY(!PLC_driver.comInfo);
        QVERIFY(!PLC_driver.finishCallback && !PLC_driver.failCallback);
        QVERIFY(!LB && !LW && !RWI);
        QCOMPARE(PLC_driver.currentSource, 100);
        QCOMPARE(PLC_driver.retVar.hostKey | PLC_driver.retVar.result | PLC_driver.retVar.length,
                 0);
        QVERIFY(PLC_driver.retVar.label.isEmpty() && PLC_driver.retVar.data.isEmpty());
        QVERIFY(DataStorage.isEmpty());
        QCOMPARE(QueryFinishFlag(), 1);
    }

    void settingsRecordLosesTwoIntsOnly()
    {
        ComInfo info;
        std::memset(&info, 0x5A, sizeof info);
        ComInfo expected = info;
        expected.hostArea40 = 0;
        expected.hostArea52 = 0;
        SetComInfo(&info);
        QCOMPARE(std::memcmp(&info, &expected, sizeof info), 0);
        QCOMPARE(PLC_driver.comInfo, &info);
        SetComInfo(nullptr);
        QVERIFY(!PLC_driver.comInfo);
    }

    void stationSwitch()
    {
        EnCommStation(5, 0);
        EnCommStation(5, 0);
        EnableEthernet(0, 0);
        EnCommStation(5, 7);
        QCOMPARE(PLC_driver.stationMap.keys(), QList<int>() << 0 << 5);
        QVERIFY(Ethernetcontains(5) && Ethernetcontains(0) && !Ethernetcontains(6));
        EnCommStation(5, 1);
        EnCommStation(6, 1);
        QCOMPARE(PLC_driver.stationMap.keys(), QList<int>() << 0);
        EnableEthernet(-1, 7);
        QVERIFY(PLC_driver.stationMap.isEmpty());
        QVERIFY(!Ethernetcontains(-1));
    }

    void returnedRecordCarriesNoValueBytes()
    {
        RW_VAR from = writeOf(MEMORY_WORD, 7, 1, bytes("3412"), 4, 3);
        from.hostSubKey = 5;
        from.remoteMode = 6;
        from.result = 8;
        from.auxParam = 9;
        from.label = text("label");
        from.addressText = text("7");
        RW_VAR to;
        to.data = bytes("FF");
        passRetValue(from, to);
        QVERIFY(to.data.isEmpty());
        QCOMPARE(from.data, bytes("3412"));
        // all ints up to the label, and from the register type to the data
        QCOMPARE(std::memcmp(&to, &from, offsetof(RW_VAR, label)), 0);
        QCOMPARE(std::memcmp(&to.regType, &from.regType, 6 * sizeof(int)), 0);
        QCOMPARE(to.label, from.label);
        QCOMPARE(to.addressText, from.addressText);
    }
};

QTEST_APPLESS_MAIN(Setup)
#include "tst_setup.moc"
