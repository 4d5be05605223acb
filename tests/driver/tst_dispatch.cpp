#include "driver/dispatch.h"
#include "support/driver.h"

#include <QtTest>

#include <climits>

/// What no encoder builds and so no trace reaches: frames that accept any length, outcomes beyond
/// the table.
class DispatchOfReplies : public QObject
{
    Q_OBJECT

private slots:
    void anyLength()
    {
        // length said of a good reply of 9 bytes, code of the local and of the remote area
        const int rows[][3] = {{8, 11, 111},  {1, 11, 111},  {0, 41, 141},
                               {-1, 11, 111}, {10, 11, 111}, {9, 1, 100}};
        resetDriver();
        Protocol frame;
        frame.replyLength = REPLY_ANY;
        frame.replyDataOffset = 3;
        frame.var = variable(MEMORY_WORD, 0, 2);
        PLC_driver.frameList << frame;
        QByteArray reply = bytes("01 03 04 00 0A 01 02 5A 60");
        for (const auto& row : rows) {
            QCOMPARE(DealDataOfRemoteArea(&reply, row[0]), row[2]);
            QVERIFY(DataStorage.isEmpty());
            QCOMPARE(DealDataOfLocalArea(&reply, row[0]), row[1]);
            QCOMPARE(DataStorage.isEmpty(), row[0] != 9);
        }
        QCOMPARE(PLC_driver.frameList.size(), 1);
    }

    void outcomes()
    {
        resetDriver(); // no frame is looked at for these
        const int codes[][2] = {{0, 1}, {4, 100}, {8, 200}, {-1, 200}, {INT_MIN, 200}};
        for (const auto& row : codes)
            QCOMPARE(GetDriverReturnValue(row[0]), row[1]);
        PLC_driver.frameList << Protocol();
        const int bases[] = {10, 40, 70, 110, 140, 170};
        const int outcomes[] = {1, 2, 3, 5, 6, 7};
        for (int i = 0; i < 6; ++i) {
            PLC_driver.frameList[0].var.hostKey = i;
            QCOMPARE(GetDriverReturnValue(outcomes[i]), bases[i] + 1 + i);
        }
    }
};

QTEST_APPLESS_MAIN(DispatchOfReplies)
#include "tst_dispatch.moc"
