#include "driver.h"
#include "work.h"

namespace
{
constexpr int NEW_WORD = 2000; // an address that no pending write has
constexpr int FOUR_BYTES = 4;

RW_VAR waiting;  // the next to be queued, with keys and an address of its own
QString address; // what the host writes,
QByteArray value, answer;
int type = MEMORY_WORD;
int count = 1;
qint64 returned = 0;

void queueAnother()
{
    driver.addListWriteVar(&waiting, ADD_UNCHANGED);
    waiting.address = (waiting.address + 1) % NEW_WORD;
    ++waiting.hostKey;
}

void prepare(int pending, int atAddress)
{
    waiting = RW_VAR();
    waiting.rwFlag = RW_WRITE;
    waiting.nodeId = NODE;
    waiting.station = STATION;
    waiting.regType = MEMORY_WORD;
    waiting.length = 1;
    waiting.data = QByteArray::fromHex("3412");
    for (int i = 0; i < pending; ++i)
        queueAnother();
    address = QString::number(atAddress);
    answer = writeReply();
    type = MEMORY_WORD;
    count = 1;
    value = QByteArray::fromHex("7856");
    returned = 0;
    // The store has its size: what a write shows there does not lengthen it.
    QString last = QString::number(NEW_WORD);
    QByteArray none;
    driver.getRegisterData(0, MEMORY_WORD, &last, STATION, &none, 1);
}

void setUpQueue(int pending)
{
    prepare(pending, NEW_WORD);
}

void setUpQueueFour(int pending)
{
    prepare(pending, 2 * NEW_WORD);
    type = MEMORY_BYTE;
    count = FOUR_BYTES;
    value = QByteArray::fromHex("1100220033004400");
}

void setUpMerge(int pending)
{
    prepare(pending, pending - 1);
}

void setUpTurn(int others)
{
    prepare(others + 1, NEW_WORD);
}

void put()
{
    QByteArray copy = value;
    QString label;
    constexpr int ownKey = -1;
    returned += driver.setRegisterData(&label, type, &address, STATION, &copy, count, ownKey, 0);
}

void unqueue()
{
    for (int i = 0; i < count; ++i)
        driver.state->writeList.removeLast();
}

void checkReturned(qint64 operations, int pendingThen)
{
    expect("entries returned", returned, operations * pendingThen);
    put();
    expect("writes pending", driver.state->writeList.size(), pendingThen);
}

void checkQueue(int pending, qint64 operations)
{
    checkReturned(operations, pending + 1);
    expect("address of the last", driver.state->writeList.last().address, NEW_WORD);
    expect("the value is queued", driver.state->writeList.last().data == value ? 1 : 0, 1);
}

void checkQueueFour(int pending, qint64 operations)
{
    checkReturned(operations, pending + FOUR_BYTES);
    expect("address of the last", driver.state->writeList.last().address,
           2 * NEW_WORD + FOUR_BYTES - 1);
    expect("the value is queued", driver.state->writeList.last().data.toHex() == "44" ? 1 : 0, 1);
}

void checkMerge(int pending, qint64 operations)
{
    checkReturned(operations, pending);
    expect("address of the last", driver.state->writeList.last().address, pending - 1);
    expect("the value is merged", driver.state->writeList.last().data == value ? 1 : 0, 1);
}

void turn()
{
    // No cyclic read is due: that turn is another row's.
    driver.state->writeBurst = 0;
    driver.comCommunication();
    driver.dataCom(&answer, answer.size());
}

void checkTurns(int others, qint64 operations)
{
    expect("writes finished", finishedWrites, operations);
    expect("writes pending", driver.state->writeList.size(), others + 1);
    expect("key of the next write", driver.state->writeList.at(0).hostKey, operations);
}
} // namespace

const Work QUEUE_BEHIND = {setUpQueue, put, unqueue, checkQueue};
const Work QUEUE_FOUR_BEHIND = {setUpQueueFour, put, unqueue, checkQueueFour};
const Work MERGE_INTO = {setUpMerge, put, nullptr, checkMerge};
const Work WRITE_BEFORE = {setUpTurn, turn, queueAnother, checkTurns};
