#include "check/locks.h"
#include "support/driver.h"
#include "support/reply.h"
#include "threads/crew.h"

#include <QtTest>

#include <array>
#include <cstring>

namespace
{
// Requests that the driver reports the end of; each job numbers its own, and its place here is
// their first key.
enum Request { VALUE, VALUE_AGAIN, RECORD, ONCE, REQUESTS };
constexpr int WAITING_MOST = 100; ///< of each; all together stay below LIST_LIMIT
constexpr int TARGETS = 8;        ///< of VALUE_AGAIN: a newer write replaces one that waits

struct Ends {
    QVector<int> times; ///< by number of the request
    std::atomic<int> count{0};
};
Ends ends[REQUESTS];
std::atomic<int> mistakes{0};
std::atomic<int> failuresSeen{0}; ///< looks at `lastFailed` that found it set

void expect(bool holds)
{
    mistakes += !holds;
}

void noteEnd(int cookie, int request, int number, int state)
{
    ++ends[request].times[number];
    ++ends[request].count;
    expect(cookie == 99 && (state == FINISH_DONE || state == FINISH_FAILED));
}

void waitForRoom(Request request, int number)
{
    while (number - ends[request].count > WAITING_MOST)
        QTest::qSleep(1);
}

/// Numbers without a pattern from numbers in sequence, the same in every run.
unsigned scattered(int number)
{
    const unsigned mixed = static_cast<unsigned>(number) * 2654435761U;
    return mixed ^ (mixed >> 15);
}

/// Turn number `number` of the communication task; of `oddsOfFault` replies three are missing, too
/// short or corrupt.
void turn(int number, unsigned oddsOfFault)
{
    const Protocol* request = ComCommunication();
    if (!request)
        return;
    QByteArray reply = goodReply(*request, number);
    const unsigned fault = scattered(number) % oddsOfFault;
    if (fault == 1)
        reply.clear();
    else if (fault == 2)
        reply.chop(1);
    else if (fault == 3 && !reply.isEmpty())
        reply[0] = static_cast<char>(~reply.at(0));
    DataCom(&reply, reply.size());
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
    const int result = GetRegisterData(0, types[n % 5], &address, stationOf(n), &out, n % 40);
    expect(result == 1 || address.contains(QLatin1Char('.')));
    expect(out.size() >= n % 40);
}

void setValue(Request request, int type, int n, int address, int count)
{
    QString label = QString::number(n), addressText = QString::number(address);
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

/// A record of a write, or, for ONCE, of a one-shot read.
void addRecord(Request request, int n)
{
    waitForRoom(request, n);
    RW_VAR var = writeOf(MEMORY_BIT, n % 100000, 1, bytes("01"), request, stationOf(n));
    var.hostSubKey = n;
    const int mode = n % 2 == 0 ? ADD_CHECKED : ADD_UNCHANGED;
    if (request == RECORD) {
        var.nodeId = n % 3 == 0 ? 2 : settings.ownNode;
        expect(AddListWriteVar(&var, mode) > 0);
        return;
    }
    var.rwFlag = RW_READ;
    var.regType = n % 3 == 0 ? SPECIAL_WORD : MEMORY_WORD;
    var.addressText = texts[static_cast<std::size_t>(n % 2)];
    var.length = 1 + n % 25;
    expect(AddListOnceReadVar(&var, mode) > 0);
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
const Job making[] = {writeValue, writeValueAgain, [](int n) { addRecord(RECORD, n); },
                      [](int n) { addRecord(ONCE, n); }};
const Job beside[] = {readValue, readValue, regroup, switchStation, look};

/// The number of requests that did not end as they should: once, or not at all when a later one has
/// taken their place.
int wrongEnds(int request, int made)
{
    int wrong = 0;
    for (int n = 0; n < made; ++n) {
        const bool queued = request >= RECORD || settings.writeMode == WRITE_QUEUE;
        const bool replaceable = request == VALUE_AGAIN && n + TARGETS < made;
        const int count = ends[request].times.at(n);
        wrong += count > queued || (count == 0 && queued && !replaceable);
    }
    return wrong;
}

constexpr int WORDS = 125;
constexpr int READS = 5000;       ///< of each reader
constexpr int READS_MOST = 1000;  ///< in a call that waits for the block to change
constexpr int LEAST_CHANGES = 20; ///< with fewer, the threads have hardly met
std::atomic<int> changes{0};

void readUntilChanged(int /*n*/)
{
    thread_local QByteArray last;
    bool changed = false;
    for (int i = 0; i < READS_MOST && !changed; ++i) {
        QByteArray block;
        expect(read(MEMORY_WORD, "0", WORDS, block) == 1 && block.size() == 2 * WORDS &&
               block.mid(2) == block.left(2 * WORDS - 2)); // all words are equal
        changed = block != last;
        last = block;
    }
    changes += changed;
}
} // namespace

/// All that may be called at the same time is. A ThreadSanitizer build tells of every race.
class Stress : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        resetDriver();
        mistakes = failuresSeen = 0;
    }

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
        QFETCH(int, writeMode);
        QFETCH(int, remoteFraming);
        settings.writeMode = writeMode;
        settings.remoteFraming = remoteFraming;
        settings.retryLimit = 1;
        RegistCallBackFuncIntf(noteEnd, nullptr);
        for (Ends& of : ends) {
            of.times = QVector<int>(times(MADE));
            of.count = 0;
        }
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

        qDebug("%d turns, line seen failing %d times", turns, failuresSeen.load());
        QCOMPARE(mistakes.load(), 0);
        QVERIFY(PLC_driver.writeList.isEmpty() && PLC_driver.onceReadList.isEmpty());
        for (int request = 0; request < REQUESTS; ++request)
            QCOMPARE(wrongEnds(request, times(MADE)), 0);
        QVERIFY(PLC_driver.stationMap.isEmpty());
    }

    /// A host read shows the block of one reply or of one write, never a part of each.
    void blocksAreReadWhole()
    {
        settings.writeMode = WRITE_STORE_ONLY;
        settings.maxBlockLength = WORDS;
        RW_VAR var = variable(AREA_MEMORY, 0, WORDS);
        AddListReadVar(&var);
        Crew readers;
        readers.start(readUntilChanged, times(READS));
        readers.start(readUntilChanged, times(READS));
        Crew writer;
        const Job write = [](int n) { setValue(VALUE, MEMORY_WORD, n, 0, WORDS); };
        writer.startBeside(readers, write, std::chrono::microseconds(0));
        for (int turns = 0; readers.isAtWork(); ++turns)
            turn(turns, 1);
        readers.join();
        qDebug("%d changes seen", changes.load());
        QCOMPARE(mistakes.load(), 0);
        QVERIFY(changes > LEAST_CHANGES);
    }
};

QTEST_APPLESS_MAIN(Stress)
#include "tst_stress.moc"
