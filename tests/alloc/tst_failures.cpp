#include "alloc/scenarios.h"
#include "support/failing_memory.h"

#include <QFile>
#include <QtTest>

namespace
{
/// What a runtime holds that shares its memory with the driver: copies of all that can be copied.
struct Copies {
    QList<RW_VAR> cyclic = PLC_driver.readList, writes = PLC_driver.writeList,
                  once = PLC_driver.onceReadList, pieces = given.pieces;
    QList<Protocol> frames = PLC_driver.frameList;
    QMap<int, QMap<int, QByteArray>> store = DataStorage;
    QMap<int, int> stations = PLC_driver.stationMap;
};

struct Result {
    int result;
    QByteArray state;
    QByteArray end; ///< what it comes to once there is memory again
};

constexpr int EXCEPTION = -99;

void prepare(const Scenario& scenario)
{
    resetDriver();
    RegistCallBackFuncIntf(noteFinish, noteFail);
    noted = 0;
    given = Arguments();
    settings.retryLimit = 3;
    scenario.before();
}

/// Turns with good replies, until all that was queued has ended and the cyclic list has gone round.
QByteArray endText()
{
    for (int i = 0; i < 30; ++i) {
        const Protocol* frame = ComCommunication();
        if (!frame)
            continue;
        const int data = frame->replyLength - 2;
        answer(frame->replyLength == 0 ? QByteArray() : withCrc(QByteArray(data, '\x11')));
    }
    return QByteArray::number(PLC_driver.readList.size()) + ' ' +
           QByteArray::number(PLC_driver.writeList.size() + PLC_driver.onceReadList.size()) + ' ' +
           notesText() + storeText();
}

Result resultOf(const Scenario& scenario, Call call)
{
    prepare(scenario);
    const int result = call();
    const QByteArray state = stateText();
    return {result, state, endText()};
}

/// The results that memory may lead to, first that of a call which has all it wants.
QList<Result> lawfulResults(const Scenario& scenario, bool copied)
{
    QList<Result> lawful;
    const Result done = resultOf(scenario, scenario.call);
    lawful << done;
    if (scenario.other)
        lawful << resultOf(scenario, scenario.other);
    prepare(scenario);
    const QByteArray before = stateText();
    if (scenario.refusal == MAY_REFUSE || copied)
        lawful << Result{scenario.neutral, before, done.end};
    if (scenario.refusal == MUST_TAKE && copied) { // the reply was stored, the frame is sent again
        const QByteArray store = done.state.mid(done.state.indexOf("store\n"));
        lawful << Result{scenario.neutral, before.left(before.indexOf("store\n")) + store,
                         done.end};
    }
    return lawful;
}
} // namespace

/// Each allocation of each entry point fails once alone, and once with all that follow it.
class FailedAllocations : public QObject
{
    Q_OBJECT

    int injected = 0;

    static bool locksAreFree()
    {
        bool all = true;
        for (QMutex* lock :
             {&PLC_driver.listMutex, &PLC_driver.storageMutex, &PLC_driver.stationMutex}) {
            const bool isFree = lock->tryLock();
            all = all && isFree;
            if (isFree)
                lock->unlock();
        }
        return all;
    }

private slots:
    void entryPoints_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("how");
        QTest::addColumn<bool>("copied");
        int index = 0;
        for (const Scenario& scenario : SCENARIOS) {
            for (int variant = 0; variant < 4; ++variant) {
                const int how = variant % 2 == 0 ? ONE_FAILS : ALL_FAIL;
                const QByteArray name = QByteArray(scenario.name) +
                                        (how == ONE_FAILS ? ", one fails" : ", all fail") +
                                        (variant < 2 ? "" : ", copies held");
                QTest::newRow(name.constData()) << index << how << (variant >= 2);
            }
            ++index;
        }
    }

    void entryPoints()
    {
        QFETCH(int, index);
        QFETCH(int, how);
        QFETCH(bool, copied);
        const Scenario& scenario = SCENARIOS[index];
        const QList<Result> lawful = lawfulResults(scenario, copied);
        int failures = -1;
        for (int nth = 1; failures != 0; ++nth) {
            prepare(scenario);
            const Copies* copies = copied ? new Copies : nullptr;
            failMemory(static_cast<FailingMemory>(how), nth);
            int result = EXCEPTION;
            try {
                result = scenario.call();
            } catch (...) {
                // told by the result
            }
            failures = restoreMemory();
            injected += failures > 0 ? 1 : 0;
            delete copies;
            QVERIFY(locksAreFree());
            const QByteArray state = stateText();
            int match = 0;
            while (match < lawful.size() &&
                   (lawful.at(match).result != result || lawful.at(match).state != state))
                ++match;
            if (match == lawful.size() || (failures == 0 && match != 0)) {
                qDebug("result %d of failure %d in\n%s\ninstead of %d in\n%s", result, nth,
                       state.constData(), lawful.at(0).result, lawful.at(0).state.constData());
                QFAIL("neither done nor refused");
            }
            const bool isRefused = match > (scenario.other ? 1 : 0);
            if (isRefused)
                scenario.call();
            QCOMPARE(endText(), lawful.at(match).end);
            QVERIFY2(failures > 0 || nth > 1 || !copied, "nothing has failed");
        }
    }

    /// A write that there is no memory for, turn after turn, does not hold back the reads.
    void reads()
    {
        resetDriver();
        addCyclic();
        queue(wordWrite(3));
        for (int i = 0; i < 5; ++i) {
            failMemory(ALL_FAIL, 1);
            QVERIFY(!ComCommunication());
            injected += restoreMemory() > 0 ? 1 : 0;
        }
        QVERIFY(ComCommunication());
        QCOMPARE(PLC_driver.frameList.at(0).var.rwFlag, int{RW_READ});
        QCOMPARE(PLC_driver.writeList.size(), 1);
    }

    /// A line is in the file as a whole or not at all.
    void log()
    {
        for (const FailingMemory how : {ONE_FAILS, ALL_FAIL}) {
            int failures = -1;
            for (int nth = 1; failures != 0; ++nth) {
                QFile::remove(text("debug.log"));
                failMemory(how, nth);
                customMessageHandler(QtDebugMsg, "abc");
                failures = restoreMemory();
                injected += failures > 0 ? 1 : 0;
                QFile file(text("debug.log"));
                const QByteArray lines =
                    file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
                QCOMPARE(lines.count('\n'), lines.endsWith(":abc\n") ? 1 : 0);
                QVERIFY(failures != 0 || !lines.isEmpty());
            }
        }
    }

    void cleanupTestCase() { qDebug("%d failed allocations", injected); }
};

QTEST_APPLESS_MAIN(FailedAllocations)
#include "tst_failures.moc"
