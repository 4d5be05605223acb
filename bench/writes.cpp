#include "driver.h"
#include "transport.h"
#include "work.h"

namespace
{
constexpr int KEY = 7;
constexpr int SUB_KEY = 8;

QString label, address;
QByteArray values[2]; // by turns, so that each write can be told from the one before
QByteArray readAnswer, writeAnswer;
qint64 written = 0;

void prepare(const char* addressText, const QByteArray& even, const QByteArray& odd)
{
    label = QStringLiteral("setpoint");
    address = QString::fromLatin1(addressText);
    values[0] = even;
    values[1] = odd;
    readAnswer = readReply(FC_READ_MEMORY_WORDS, QByteArray::fromHex("5A5A"));
    writeAnswer = writeReply();
    written = 0;
}

void setUpWord(int /*size*/)
{
    prepare("100", QByteArray::fromHex("3412"), QByteArray::fromHex("7856"));
}

void setUpBit(int /*size*/)
{
    prepare("100.3", QByteArray(1, '\0'), QByteArray(1, '\1'));
}

void queue(int type)
{
    QByteArray value = values[++written % 2];
    driver.setRegisterData(&label, type, &address, STATION, &value, 1, KEY, SUB_KEY);
    // No cyclic read is due: that turn is another row's.
    driver.state->writeBurst = 0;
}

void takeTurn(QByteArray& answer)
{
    driver.comCommunication();
    driver.dataCom(&answer, answer.size());
}

void writeWord()
{
    queue(MEMORY_WORD);
    takeTurn(writeAnswer);
}

void writeBit()
{
    queue(MEMORY_BIT);
    takeTurn(readAnswer);
    takeTurn(writeAnswer);
}

void writeWordOverSocket()
{
    queue(MEMORY_WORD);
    const Protocol* request = driver.comCommunication();
    const int length = exchange(request->frame.constData(), request->frameLength,
                                writeAnswer.data(), request->replyLength);
    driver.dataCom(&writeAnswer, length);
}

void checkFinished(int type, qint64 operations)
{
    expect("writes finished", finishedWrites, operations);
    expect("writes pending", driver.state->writeList.size(), 0);
    QByteArray value;
    driver.getRegisterData(0, type, &address, STATION, &value, 1);
    expect("the value is in the store", value == values[operations % 2] ? 1 : 0, 1);
}

void checkWord(int /*size*/, qint64 operations)
{
    checkFinished(MEMORY_WORD, operations);
    queue(MEMORY_WORD);
    const QByteArray sent = driver.comCommunication()->frame;
    const QByteArray& value = values[written % 2];
    expect("the value that is sent", sent.at(4) == value.at(1) && sent.at(5) == value.at(0), 1);
}

void checkBit(int /*size*/, qint64 operations)
{
    checkFinished(MEMORY_BIT, operations);
    constexpr int word = 0x5A5A;
    constexpr int mask = 1 << 3; // an even byte is the low one of its word
    for (int i = 0; i < 2; ++i) {
        queue(MEMORY_BIT);
        takeTurn(readAnswer);
        const QByteArray sent = driver.comCommunication()->frame;
        const bool on = values[written % 2].at(0) != 0;
        expect("the word that is sent", (sent.at(4) << 8) | static_cast<unsigned char>(sent.at(5)),
               on ? word | mask : word & ~mask);
        takeTurn(writeAnswer);
    }
}

void setUpSocket(int size)
{
    setUpWord(size);
    openWire(OVER_SOCKET, readAnswer, writeAnswer);
    writeAnswer.fill('\0');
}
} // namespace

const Work WRITE_WORD = {setUpWord, writeWord, nullptr, checkWord};
const Work WRITE_BIT = {setUpBit, writeBit, nullptr, checkBit};
const Work WRITE_WORD_SOCKET = {setUpSocket, writeWordOverSocket, nullptr, checkWord};
