#include "cyclic.h"
#include "transport.h"
#include "work.h"

#include <atomic>
#include <memory>
#include <thread>

namespace
{
constexpr int FEW_ENTRIES = 10;
constexpr int ALL_STATIONS = 247;
constexpr int SHORT_READ = 2; // words

void turn()
{
    driver.comCommunication();
    takeReply(cyclicReply.size());
}

void setUpBits(int bytes)
{
    prepareCyclic({description(INPUT_BYTE, 0, STATION, FEW_ENTRIES * bytes)}, bytes,
                  readReply(FC_READ_INPUT_BITS, pattern(bytes)));
}

QByteArray shortReply()
{
    return readReply(FC_READ_MEMORY_WORDS, pattern(SHORT_READ * WORD_BYTES));
}

/// Short entries one behind the other.
void setUpShort(int first, int count)
{
    prepareCyclic({description(MEMORY_WORD, first, STATION, count * SHORT_READ)}, SHORT_READ,
                  shortReply());
}

void setUpList(int count)
{
    setUpShort(0, count);
}

void setUpAt(int first)
{
    setUpShort(first, FEW_ENTRIES);
}

void setUpStations(int stations)
{
    QList<VAR_DESC> vars;
    for (int i = 0; i < ALL_STATIONS; ++i)
        vars << description(MEMORY_WORD, SHORT_READ * i, i % stations + 1, SHORT_READ);
    prepareCyclic(vars, SHORT_READ, shortReply());
}

/// A thread that reads the first word as fast as it can.
class Reader
{
public:
    ~Reader()
    {
        stopped = true;
        thread.join();
    }
    qint64 reads() const { return done; }

private:
    void readOn()
    {
        QString address = QString::number(0);
        QByteArray value;
        while (!stopped)
            done += driver.getRegisterData(0, MEMORY_WORD, &address, STATION, &value, 1);
    }

    std::atomic<bool> stopped{false};
    std::atomic<qint64> done{0};
    std::thread thread{[this] { readOn(); }};
};
std::unique_ptr<Reader> reader;

void setUpContended(int words)
{
    setUpWords(words);
    reader = std::make_unique<Reader>();
    while (reader->reads() == 0)
        std::this_thread::yield();
}

void checkContended(int size, qint64 operations)
{
    reader.reset();
    checkTurns(size, operations);
}

void setUpSocket(int words)
{
    setUpWords(words);
    openWire(OVER_SOCKET, cyclicReply, QByteArray());
    cyclicReply.fill('\0');
}

void turnOverSocket()
{
    const Protocol* request = driver.comCommunication();
    takeReply(exchange(request->frame.constData(), request->frameLength, cyclicReply.data(),
                       request->replyLength));
}
} // namespace

const Work READ_WORDS = {setUpWords, turn, nullptr, checkTurns};
const Work READ_BITS = {setUpBits, turn, nullptr, checkTurns};
const Work READ_LIST = {setUpList, turn, nullptr, checkTurns};
const Work READ_STATIONS = {setUpStations, turn, nullptr, checkTurns};
const Work READ_AT = {setUpAt, turn, nullptr, checkTurns};
const Work READ_CONTENDED = {setUpContended, turn, nullptr, checkContended};
const Work READ_SOCKET = {setUpSocket, turnOverSocket, nullptr, checkTurns};
