#include "support/at_rest.h"
#include "support/failing_memory.h"
#include "support/invariants.h"
#include "trace/runner.h"
#include "trace/words.h"

#include <QVarLengthArray>
#include <QtTest>

namespace
{
// Never unloaded: Qt's own leaks are known by the names of functions in it.
const Library& library = *new Library(KP410_LIBRARY);
Runner runner(library);
Communication_Protocol& driver = *BIND(library, PLC_driver);
const Store& store = *BIND(library, DataStorage);

/// The first says what the state is.
const QList<TraceCase> cases = traceCases(text(KP410_SCENARIOS));

QVarLengthArray<int, 64> noted; ///< keys and states of the callbacks, without memory

/// Callbacks of a runtime that is careless with memory, after they have taken note without any.
void noteFinish(int, int key, int, int state)
{
    noted.append(key * 10 + state);
    events << QString::number(key);
}

void noteFail(QList<RW_VAR>*, int key, int)
{
    constexpr int failed = 9;
    noteFinish(0, key, 0, failed);
}

/// What a runtime holds that shares its memory with the driver: copies of all that can be copied.
struct Copies {
    QList<RW_VAR> cyclic = driver.readList, writes = driver.writeList, once = driver.onceReadList;
    QList<Protocol> frames = driver.frameList;
    Store images = store;
    QMap<int, int> stations = driver.stationMap;
};

struct Result {
    QString seen;   ///< what the call returns, and the state
    QString stored; ///< as host reads show it: what never arrived is as good as 0
    QString end;    ///< what it comes to once there is memory again
    bool operator==(const Result& other) const
    {
        return seen == other.seen && stored == other.stored;
    }
};

QString storeText()
{
    QString shown;
    const Store images = store;
    for (auto areas = images.constBegin(); areas != images.constEnd(); ++areas) {
        for (auto image = areas->constBegin(); image != areas->constEnd(); ++image) {
            QByteArray bytes = *image;
            while (bytes.endsWith('\0'))
                bytes.chop(1);
            if (!bytes.isEmpty())
                shown += text("%1/%2 ", areas.key(), image.key()) + hexText(bytes);
        }
    }
    return shown;
}

QString notesText()
{
    QString shown;
    for (const int note : noted)
        shown += text("callback %1\n", note);
    return shown;
}

QString stateText()
{
    QString shown = notesText();
    for (const TraceLine& line : cases.first().lines)
        shown += runner.outcome(line) + QLatin1Char('\n');
    return shown;
}

/// What is done before; and what is done while memory fails, then what else that may end as.
struct Scenario {
    QList<TraceLine> before;
    QList<QList<TraceLine>> ways;
};

Scenario scenarioOf(const TraceCase& lines)
{
    Scenario scenario;
    for (TraceLine line : lines.lines) {
        const QString sign = line.words.first();
        const bool opens = sign == text("!") || sign == text("or");
        if (opens)
            scenario.ways << QList<TraceLine>();
        if (opens || sign == text("and"))
            line.words.removeFirst();
        (scenario.ways.isEmpty() ? scenario.before : scenario.ways.last()) << line;
    }
    return scenario;
}

/// At rest, and without the memory that an answered frame leaves to the next.
void putToRest()
{
    runner.reset();
    runner.outcome(traceLine(0, text("add read MEMORY_WORD 0+1")));
    BIND(library, ComCommunication)();
    runner.reset();
}

void prepare(const Scenario& scenario)
{
    putToRest();
    BIND(library, RegistCallBackFuncIntf)(noteFinish, noteFail);
    noted.clear();
    driver.comInfo->retryLimit = 3;
    for (const TraceLine& line : scenario.before) {
        const QString wrong = runner.run(line);
        if (!wrong.isEmpty())
            qFatal("line %d: %s", line.number, qPrintable(wrong));
    }
}

/// After turns with good replies, until all that was queued has ended and the cyclic list has gone
/// round.
QString endText()
{
    runner.outcome(traceLine(0, text("turns = ") + QString(30, QLatin1Char('?'))));
    return numbers({driver.readList.size(), driver.writeList.size(), driver.onceReadList.size()}) +
           notesText() + storeText();
}

/// What has come of the lines, the last that says something.
Result resultOf(const QList<TraceLine>& lines)
{
    QString said;
    for (const TraceLine& line : lines) {
        const QString outcome = runner.outcome(line);
        said = outcome.isEmpty() ? said : outcome;
    }
    return {said + text("\n") + stateText(), storeText(), QString()};
}

/// The results that memory may lead to, first that of a call which has all it wants.
QList<Result> lawfulResults(const Scenario& scenario, bool copied)
{
    QList<Result> lawful;
    for (const QList<TraceLine>& way : scenario.ways) {
        prepare(scenario);
        lawful << resultOf(way);
        lawful.last().end = endText();
    }
    const Result done = lawful.first();
    prepare(scenario);
    runner.around = [](const auto& /*call*/) {};
    Result refused = resultOf(scenario.ways.first());
    refused.end = done.end;
    // A reply must be taken, or be as good as none; refused is only what would part the driver from
    // the runtime's copies: the reply was stored, the frame is sent again.
    const bool isReply = scenario.ways.first().first().words.first().startsWith(QLatin1Char('<'));
    if (!isReply || copied)
        lawful << refused;
    refused.stored = done.stored;
    if (isReply && copied)
        lawful << refused;
    return lawful;
}
} // namespace

/// Each allocation of each entry point fails once alone, and once with all that follow it.
class FailedAllocations : public QObject
{
    Q_OBJECT

    int injected = 0;

private slots:
    void entryPoints_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("how");
        QTest::addColumn<bool>("copied");
        QVERIFY(!cases.isEmpty());
        for (int i = 4; i < 4 * cases.size(); ++i)
            QTest::newRow(qPrintable(cases.at(i / 4).name + text(i % 4 > 1 ? ", copies held" : "") +
                                     text(i % 2 == 0 ? ", one fails" : ", all fail")))
                << i / 4 << int{i % 2 == 0 ? ONE_FAILS : ALL_FAIL} << (i % 4 > 1);
    }

    void entryPoints()
    {
        QFETCH(int, index);
        QFETCH(int, how);
        QFETCH(bool, copied);
        const Scenario scenario = scenarioOf(cases.at(index));
        const QList<Result> lawful = lawfulResults(scenario, copied);
        int failures = -1;
        for (int nth = 1; failures != 0; ++nth) {
            prepare(scenario);
            const Copies* copies = copied ? new Copies : nullptr;
            bool threw = false;
            runner.around = [&](const std::function<void()>& call) {
                failMemory(static_cast<FailingMemory>(how), nth);
                try {
                    call();
                } catch (...) {
                    threw = true;
                }
                failures = restoreMemory();
            };
            const Result result = resultOf(scenario.ways.first());
            runner.around = &Runner::plainly;
            injected += failures > 0 ? 1 : 0;
            delete copies;
            QVERIFY(!threw);
            QCOMPARE(heldLock(driver), QString());
            const int match = lawful.indexOf(result);
            if (match < 0 || (failures == 0 && match != 0)) {
                qDebug("failure %d: %s\n%s\ninstead of %s\n%s", nth, qPrintable(result.seen),
                       qPrintable(result.stored), qPrintable(lawful.first().seen),
                       qPrintable(lawful.first().stored));
                QFAIL("neither done nor refused");
            }
            if (match >= scenario.ways.size()) // refused: the same call can be made again
                resultOf(scenario.ways.first());
            QCOMPARE(endText(), lawful.at(match).end);
            QVERIFY2(failures > 0 || nth > 1 || !copied, "nothing has failed");
        }
    }

    /// A write that there is no memory for, turn after turn, does not hold back the reads.
    void reads()
    {
        putToRest();
        runner.outcome(traceLine(0, text("add read MEMORY_WORD 0+2")));
        runner.outcome(traceLine(0, text("add write MEMORY_WORD 3+1 data:3412")));
        for (int i = 0; i < 5; ++i) {
            failMemory(ALL_FAIL, 1);
            const Protocol* frame = BIND(library, ComCommunication)();
            injected += restoreMemory() > 0 ? 1 : 0;
            QVERIFY(!frame);
        }
        QCOMPARE(runner.run(traceLine(0, text(">+ 01 03 00 00 00 02"))), QString());
        QCOMPARE(driver.writeList.size(), 1);
    }

    /// A frame that the runtime keeps a copy of is not used again, which would take memory to part
    /// the two when there is no way back.
    void heldFrame()
    {
        putToRest();
        runner.outcome(traceLine(0, text("add read MEMORY_WORD 0+2")));
        const TraceLine asked = traceLine(0, text(">+ 01 03 00 00 00 02"));
        QCOMPARE(runner.run(asked), QString());
        const QList<Protocol> kept = driver.frameList;
        runner.outcome(traceLine(0, text("<+ 01 03 04 00 01 00 02")));
        QVERIFY(driver.frameList.isEmpty());
        failMemory(ALL_FAIL, 1);
        const Protocol* frame = BIND(library, ComCommunication)();
        injected += restoreMemory() > 0 ? 1 : 0;
        QVERIFY(!frame);
        QCOMPARE(runner.run(asked), QString());
        QCOMPARE(kept.size(), 1);
    }

    void cleanupTestCase() { qDebug("%d failed allocations", injected); }
};

QTEST_APPLESS_MAIN(FailedAllocations)
#include "tst_failures.moc"
