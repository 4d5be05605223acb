#include "driver/Communication_Protocol.h"
#include "support/driver.h"

#include <QtTest>

#include <atomic>
#include <thread>

namespace
{
typedef void (*Call)();

QByteArray word = bytes("0100");

RW_VAR record()
{
    RW_VAR var = writeOf(MEMORY_WORD, 0, 1, word);
    var.addressText = text("0");
    return var;
}

void queueWrite()
{
    RW_VAR var = record();
    AddListWriteVar(&var, ADD_CHECKED);
}

void queueOneShot()
{
    RW_VAR var = record();
    AddListOnceReadVar(&var, ADD_CHECKED);
}

void queueOneShotUnchanged()
{
    RW_VAR var = variable(MEMORY_WORD, 0, 1);
    AddListOnceReadVar(&var, ADD_UNCHANGED);
}

void addCyclic()
{
    RW_VAR var = variable(MEMORY_WORD, 0, 1);
    AddListReadVar(&var);
}

void nothing() {}
} // namespace
Q_DECLARE_METATYPE(Call)

/// Each entry point waits for the locks that guard what it touches, and takes no others.
class Locks : public QObject
{
    Q_OBJECT

private slots:
    void entryPoints_data()
    {
        QTest::addColumn<Call>("before");
        QTest::addColumn<Call>("call");
        QTest::addColumn<QString>("waitsFor");
        const auto row = [](const char* name, const char* locks, Call before, Call call) {
            QTest::newRow(name) << before << call << text(locks);
        };
        row("AddListWriteVar", "L", nothing, queueWrite);
        row("AddListOnceReadVar", "L", nothing, queueOneShot);
        row("AddListOnceReadVar, unchanged", "L", nothing, queueOneShotUnchanged);
        row("AddListReadVar", "", nothing, addCyclic);
        row("ReCreatReadVarList", "L", nothing, [] {
            QList<VAR_DESC> vars;
            ReCreatReadVarList(&vars);
        });
        row("ComCommunication", "LDS", queueWrite, [] { ComCommunication(); });
        row(
            "ComCommunication, frame pending", "", [] { addCyclic(), ComCommunication(); },
            [] { ComCommunication(); });
        row(
            "DataCom, acknowledgement", "L", [] { queueWrite(), ComCommunication(); },
            [] { acknowledge(); });
        row(
            "DataCom, data", "LD", [] { addCyclic(), ComCommunication(); },
            [] { answer(withCrc("01 03 02 00 00")); });
        row("GetRegisterData", "D", nothing, [] { read(MEMORY_WORD, "0", 1, word); });
        row("SetRegisterData, queued", "L", nothing, [] { write(MEMORY_WORD, "0", word, 1); });
        row(
            "SetRegisterData, store only", "D", [] { settings.writeMode = WRITE_STORE_ONLY; },
            [] { write(MEMORY_WORD, "0", word, 1); });
        row("EnCommStation", "S", nothing, [] { EnCommStation(3, 0); });
        row("Ethernetcontains", "S", nothing, [] { Ethernetcontains(3); });
    }

    void entryPoints()
    {
        QFETCH(Call, before);
        QFETCH(Call, call);
        QMutex* const locks[] = {&PLC_driver.listMutex, &PLC_driver.storageMutex,
                                 &PLC_driver.stationMutex};
        QString waitedFor;
        for (int i = 0; i < 3; ++i) {
            resetDriver();
            before();
            QVERIFY(locks[i]->tryLock());
            std::atomic<bool> done{false};
            std::thread caller([&] {
                call();
                done = true;
            });
            // Far longer than the microseconds of a call that nothing holds up.
            for (int ms = 0; ms < 50 && !done; ++ms)
                QTest::qSleep(1);
            if (!done)
                waitedFor += QLatin1Char("LDS"[i]);
            locks[i]->unlock();
            caller.join();
        }
        QTEST(waitedFor, "waitsFor");
    }

    /// The write that a read step completes stands in a list of its own lock.
    void readStepLooksAtTheWriteListUnderItsLock()
    {
        resetDriver();
        RW_VAR var = writeOf(MEMORY_BIT, 37, 1, bytes("01"));
        AddListWriteVar(&var, ADD_CHECKED);
        ComCommunication();
        const QByteArray incomplete = PLC_driver.frameList.at(1).frame;
        QVERIFY(PLC_driver.listMutex.tryLock());
        std::thread caller([] { answer(bytes("01 03 02 00 10 B9 88")); });
        QTest::qSleep(50);
        QCOMPARE(PLC_driver.frameList.at(1).frame, incomplete);
        PLC_driver.listMutex.unlock();
        caller.join();
        QCOMPARE(PLC_driver.frameList.at(0).frame, bytes("01 06 00 02 00 30 28 1E"));
    }
};

QTEST_APPLESS_MAIN(Locks)
#include "tst_locks.moc"
