#include "check/locks.h"
#include "support/driver.h"
#include "threads/crew.h"
#include "threads/wire.h"

#include <QtTest>

#include <array>

namespace
{
// Requests that the driver reports the end of; each job numbers its own, and its place here is
// their first key.
enum Request { VALUE, VALUE_AGAIN, RECORD, ONCE, REQUESTS };
constexpr int WAITING_MOST = 100; ///< of each; all together stay below LIST_LIMIT
constexpr int TARGETS = 8;        ///< of VALUE_AGAIN: a newer write replaces one that waits

struct Ends {
    std::vector<unsigned char> times; ///< by number of the request
    std::atomic<int> count{0};
};
std::array<Ends, REQUESTS> ends;
std::atomic<int> mistakes{0};
std::atomic<int> failuresSeen{0}; ///< looks at `lastFailed` that found it set
int failures = 0;                 ///< of the communication task

void noteEnd(int cookie, int request, int number, int state)
{
    Ends& of = ends[static_cast<std::size_t>(request)];
    ++of.times[static_cast<std::size_t>(number)];
    ++of.count;
    mistakes += cookie != 99 || (state != FINISH_DONE && state != FINISH_FAILED);
}

void noteFailure(QList<RW_VAR>* /*vars*/, int /*request*/, int /*flag*/)
{
    ++failures;
}

void expect(bool holds)
{
    mistakes += !holds;
}

void waitForRoom(Request request, int number)
{
    while (number - ends[request].count > WAITING_MOST)
        QTest::qSleep(1);
}

int stationOf(int n)
{
    return 1 + static_cast<int>(scattered(n) % 3);
}

const std::array<QString, TARGETS> texts = {text("0"),   text("1"),  text("2.3"), text("40"),
                                            text("5.5"), text("60"), text("700"), text("8")};

void readValue(int n)
{
    static const int types[] = {MEMORY_WORD, MEMORY_DWORD, OUTPUT_BYTE, SPECIAL_BIT, INPUT_WORD};
    QString address = texts[scattered(n) % TARGETS];
    QByteArray out;
    const int type = types[n % 5];
    const bool fits = !address.contains(QLatin1Char('.'));
    expect(GetRegisterData(0, type, &address, stationOf(n), &out, n % 40) == 1 || !fits);
    expect(out.size() >= n % 40);
}

void setValue(Request request, int type, int n, int address, int count)
{
    QString label = QString::number(n);
    QString addressText = QString::number(address);
    QByteArray value(2 * count, static_cast<char>(n));
    SetRegisterData(&label, type, &addressText, 1 + address % 3, &value, count, request, n);
}

/// Up to four pieces each, none of which meets another's target while it waits: a write may wait
/// long, since it goes behind the others each time its station is found switched off.
void writeValue(int n)
{
    if (settings.writeMode == WRITE_QUEUE)
        waitForRoom(VALUE, n);
    setValue(VALUE, MEMORY_WORD, n, 100 + n % 3000 * 20, 1 + n % 20);
}

void writeValueAgain(int n)
{
    setValue(VALUE_AGAIN, n % TARGETS < 4 ? MEMORY_BYTE : OUTPUT_WORD, n, n % TARGETS, 1);
}

RW_VAR recordOf(Request request, int n)
{
    RW_VAR var = writeOf(MEMORY_BIT, n % 100000, 1, bytes("01"), request, stationOf(n));
    var.hostSubKey = n;
    var.label = texts[0];
    return var;
}

void addWrite(int n)
{
    waitForRoom(RECORD, n);
    RW_VAR var = recordOf(RECORD, n);
    var.nodeId = n % 3 == 0 ? 2 : settings.ownNode;
    expect(AddListWriteVar(&var, n % 2 == 0 ? ADD_CHECKED : ADD_UNCHANGED) > 0);
}

void addOnceRead(int n)
{
    waitForRoom(ONCE, n);
    RW_VAR var = recordOf(ONCE, n);
    var.rwFlag = RW_READ;
    var.regType = n % 3 == 0 ? SPECIAL_WORD : MEMORY_WORD;
    var.addressText = texts[static_cast<std::size_t>(n % 2)];
    var.length = 1 + n % 25;
    expect(AddListOnceReadVar(&var, n % 2 == 0 ? ADD_CHECKED : ADD_UNCHANGED) > 0);
}

void regroup(int n)
{
    QList<VAR_DESC> vars;
    for (int i = 0; i < 12; ++i) {
        VAR_DESC desc = {};
        desc.regType = static_cast<unsigned char>(scattered(n + i) % REGISTER_TYPE_COUNT);
        desc.station = static_cast<unsigned char>(stationOf(n + i));
        desc.addressText = texts[static_cast<std::size_t>(i % TARGETS)];
        desc.length = 1 + i;
        vars << desc;
    }
    expect(ReCreatReadVarList(&vars) > 0);
}

/// Off and on in turns.
void switchStation(int n)
{
    (n % 4 < 2 ? EnCommStation : EnableEthernet)(n % 8 == 7 ? -1 : 2 + n % 8 / 4, n % 2);
}

/// What a runtime may look at for itself.
void look(int n)
{
    failuresSeen += PLC_driver.lastFailed;
    if (n % 3 == 0) {
        Locker lock(&PLC_driver.storageMutex);
        expect(stored(stationOf(n), AREA_MEMORY).size() <= MAX_IMAGE_BYTES);
    } else if (n % 3 == 1) {
        Locker lock(&PLC_driver.listMutex);
        for (const RW_VAR& var : PLC_driver.writeList)
            expect(var.hostKey < REQUESTS);
    } else {
        Locker lock(&PLC_driver.stationMutex);
        expect(!PLC_driver.stationMap.contains(1));
    }
}

constexpr int MADE = 5000; ///< of each kind of request
constexpr std::chrono::microseconds PAUSE(20);
const Job making[] = {writeValue, writeValueAgain, addWrite, addOnceRead};
const Job beside[] = {readValue, readValue, regroup, switchStation, look};

/// The number of requests that did not end as they should: once, or not at all when a later one has
/// taken their place.
int wrongEnds(Request request, int made)
{
    int wrong = 0;
    for (int n = 0; n < made; ++n) {
        const bool queued = request >= RECORD || settings.writeMode == WRITE_QUEUE;
        const bool replaceable = request == VALUE_AGAIN && n + TARGETS < made;
        const int count = ends[request].times[static_cast<std::size_t>(n)];
        wrong += count > queued || (count == 0 && queued && !replaceable);
    }
    return wrong;
}
} // namespace

/// All that may be called at the same time is. A ThreadSanitizer build tells of every race.
class Stress : public QObject
{
    Q_OBJECT

private slots:
    void everyCallAtOnce_data()
    {
        QTest::addColumn<int>("writeMode");
        QTest::addColumn<int>("remoteFraming");
        QTest::newRow("writes queued") << int{WRITE_QUEUE} << 0;
        QTest::newRow("writes stored only") << int{WRITE_STORE_ONLY} << 0;
        QTest::newRow("remote framing") << int{WRITE_QUEUE} << 1;
    }

    void everyCallAtOnce()
    {
        resetDriver();
        QFETCH(int, writeMode);
        QFETCH(int, remoteFraming);
        settings.writeMode = writeMode;
        settings.remoteFraming = remoteFraming;
        settings.retryLimit = 1;
        RegistCallBackFuncIntf(noteEnd, noteFailure);
        for (Ends& of : ends) {
            of.times.assign(static_cast<std::size_t>(times(MADE)), 0);
            of.count = 0;
        }
        mistakes = failuresSeen = failures = 0;

        Crew makers;
        Crew others;
        for (const Job job : making)
            makers.start(job, times(MADE));
        for (const Job job : beside)
            others.startBeside(makers, job, PAUSE);
        int turns = 0;
        while (makers.isAtWork())
            turn(turns++, 16);
        others.join();
        EnCommStation(-1, 1);
        const int waiting = PLC_driver.writeList.size() + PLC_driver.onceReadList.size();
        for (int last = turns + 20 * waiting; turns < last; ++turns)
            turn(turns, 16);

        qInfo("%d turns, %ld other calls, %d given up, line seen failing %d times", turns,
              others.calls + 4L * times(MADE), failures, failuresSeen.load());
        QCOMPARE(mistakes.load(), 0);
        QCOMPARE(PLC_driver.writeList.size() + PLC_driver.onceReadList.size(), 0);
        for (int request = 0; request < REQUESTS; ++request)
            QCOMPARE(wrongEnds(static_cast<Request>(request), times(MADE)), 0);
        QVERIFY(PLC_driver.stationMap.isEmpty());
    }
};

QTEST_APPLESS_MAIN(Stress)
#include "tst_stress.moc"
