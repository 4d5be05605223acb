#include "driver/Communication_Protocol.h"
#include "support/driver.h"

#include <QtTest>

#include <atomic>
#include <thread>

namespace
{
typedef void (*Call)();

void registerWrite()
{
    RW_VAR var = writeOf(MEMORY_WORD, 0, 1, bytes("0100"));
    AddListWriteVar(&var, ADD_CHECKED);
}

void registerOneShot()
{
    RW_VAR var = variable(MEMORY_WORD, 0, 1);
    var.addressText = text("0");
    AddListOnceReadVar(&var, ADD_CHECKED);
}

void registerOneShotUnchanged()
{
    RW_VAR var = variable(MEMORY_WORD, 0, 1);
    AddListOnceReadVar(&var, ADD_UNCHANGED);
}

void registerCyclic()
{
    RW_VAR var = variable(MEMORY_WORD, 0, 1);
    AddListReadVar(&var);
}

void regroup()
{
    QList<VAR_DESC> vars;
    ReCreatReadVarList(&vars);
}

void schedule()
{
    ComCommunication();
}

void takeReply()
{
    acknowledge();
}

void readValue()
{
    QByteArray out;
    read(MEMORY_WORD, "0", 1, out);
}

void storeValue()
{
    settings.writeMode = WRITE_STORE_ONLY;
    QByteArray value = bytes("0100");
    write(MEMORY_WORD, "0", value, 1);
}

void storeReply()
{
    answer(withCrc("01 03 02 00 00"));
}

void switchStation()
{
    EnCommStation(3, 0);
}

void askStation()
{
    Ethernetcontains(3);
}
} // namespace
Q_DECLARE_METATYPE(Call)

/// Each entry point waits for the locks that guard what it touches, and takes no others.
class Locks : public QObject
{
    Q_OBJECT

private slots:
    void entryPoints_data()
    {
        QTest::addColumn<Call>("call");
        QTest::addColumn<bool>("lists");
        QTest::addColumn<bool>("storage");
        QTest::addColumn<bool>("stations");
        const auto row = [](const char* name, Call call, bool lists, bool storage, bool stations) {
            QTest::newRow(name) << call << lists << storage << stations;
        };
        row("AddListWriteVar", registerWrite, true, false, false);
        row("AddListOnceReadVar", registerOneShot, true, false, false);
        row("AddListOnceReadVar, unchanged", registerOneShotUnchanged, true, false, false);
        row("AddListReadVar", registerCyclic, false, false, false);
        row("ReCreatReadVarList", regroup, true, false, false);
        row("ComCommunication", schedule, true, true, true); // the head is a write
        row("DataCom, acknowledgement", takeReply, true, false, false);
        row("DataCom, data", storeReply, true, true, false);
        row("GetRegisterData", readValue, false, true, false);
        row("SetRegisterData, store only", storeValue, false, true, false);
        row("EnCommStation", switchStation, false, false, true);
        row("Ethernetcontains", askStation, false, false, true);
    }

    void entryPoints()
    {
        QFETCH(Call, call);
        QFETCH(bool, lists);
        QFETCH(bool, storage);
        QFETCH(bool, stations);
        struct Lock {
            QMutex* mutex;
            bool waits;
        };
        const Lock locks[] = {{&PLC_driver.listMutex, lists},
                              {&PLC_driver.storageMutex, storage},
                              {&PLC_driver.stationMutex, stations}};
        for (const Lock& lock : locks) {
            resetDriver();
            if (call == schedule || call == takeReply)
                registerWrite();
            if (call == storeReply)
                registerCyclic();
            if (call == takeReply || call == storeReply)
                ComCommunication();
            QVERIFY(lock.mutex->tryLock());
            std::atomic<bool> done{false};
            std::thread caller([&] {
                call();
                done = true;
            });
            // Long enough for a call that takes a few microseconds when nothing holds it up.
            for (int i = 0; i < (lock.waits ? 30 : 5000) && !done; ++i)
                QTest::qSleep(1);
            const bool waited = !done;
            lock.mutex->unlock();
            caller.join();
            QCOMPARE(waited, lock.waits);
        }
    }
};

QTEST_APPLESS_MAIN(Locks)
#include "tst_locks.moc"
