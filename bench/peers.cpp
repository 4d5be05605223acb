#include "driver.h"
#include "transport.h"
#include "work.h"

#include <modbus.h>

#include <algorithm>
#include <memory>

namespace
{
constexpr int WORD_BYTES = 2;
constexpr int WRITTEN_WORD = 100;
constexpr int BYTE_BITS = 8;
constexpr int LARGEST_READ = 2000; // bits of one reply

struct Release {
    void operator()(modbus_t* context) const { modbus_free(context); }
};
std::unique_ptr<modbus_t, Release> context;
QByteArray answer, request, buffer;
uint16_t words[LARGEST_READ / BYTE_BITS / WORD_BYTES];
uint8_t bits[LARGEST_READ];
int count = 0;
qint64 taken = 0; // what the calls returned

void prepare(Transport transport, const QByteArray& toReads)
{
    constexpr int baud = 9600;
    constexpr int dataBits = 8;
    const int descriptor = openWire(transport, toReads, writeReply());
    context.reset(modbus_new_rtu("wire", baud, 'N', dataBits, 1));
    modbus_set_slave(context.get(), STATION);
    modbus_set_socket(context.get(), descriptor);
    answer = toReads;
    std::fill(std::begin(words), std::end(words), uint16_t{0});
    std::fill(std::begin(bits), std::end(bits), uint8_t{0});
    taken = 0;
}

template <Transport transport>
void setUpWords(int size)
{
    count = size;
    prepare(transport, readReply(FC_READ_MEMORY_WORDS, pattern(size * WORD_BYTES)));
}

void setUpBits(int bytes)
{
    count = bytes * BYTE_BITS;
    prepare(IN_MEMORY, readReply(FC_READ_INPUT_BITS, pattern(bytes)));
}

void readWords()
{
    taken += modbus_read_registers(context.get(), 0, count, words);
}

void readBits()
{
    taken += modbus_read_input_bits(context.get(), 0, count, bits);
}

void writeWord()
{
    taken += modbus_write_register(context.get(), WRITTEN_WORD, 0);
}

void readAndWriteWord()
{
    readWords();
    writeWord();
}

void checkWords(int size, qint64 operations)
{
    expect("words read", taken, size * operations);
    const QByteArray data = pattern(size * WORD_BYTES);
    for (int i = 0; i < size; ++i) {
        const int high = static_cast<unsigned char>(data.at(WORD_BYTES * i));
        expect("a word", words[i],
               (high << 8) | static_cast<unsigned char>(data.at(WORD_BYTES * i + 1)));
    }
}

void checkBits(int bytes, qint64 operations)
{
    expect("bits read", taken, qint64{bytes} * BYTE_BITS * operations);
    const QByteArray data = pattern(bytes);
    for (int i = 0; i < bytes * BYTE_BITS; ++i)
        expect("a bit", bits[i], (data.at(i / BYTE_BITS) >> (i % BYTE_BITS)) & 1);
}

void checkWrites(int /*size*/, qint64 operations)
{
    expect("words written", taken, operations);
}

void checkBoth(int /*size*/, qint64 operations)
{
    expect("words read and written", taken, 2 * operations);
}

void prepareBare(const QByteArray& frame, const QByteArray& toReads, int replyLength)
{
    openWire(OVER_SOCKET, toReads, writeReply());
    request = frame;
    buffer = QByteArray(replyLength, '\0');
    answer = toReads;
    taken = 0;
}

void setUpBareRead(int size)
{
    const QByteArray reply = readReply(FC_READ_MEMORY_WORDS, pattern(size * WORD_BYTES));
    prepareBare(QByteArray::fromHex("0103000000000000"), reply, reply.size());
}

void setUpBareWrite(int /*size*/)
{
    prepareBare(writeReply(), writeReply(), writeReply().size());
}

void bareCalls()
{
    taken += exchange(request.constData(), request.size(), buffer.data(), buffer.size());
}

void checkBare(int /*size*/, qint64 operations)
{
    expect("bytes received", taken, answer.size() * operations);
    expect("the reply is received", buffer == answer ? 1 : 0, 1);
}
} // namespace

const Work MODBUS_READ = {setUpWords<IN_MEMORY>, readWords, nullptr, checkWords};
const Work MODBUS_READ_BITS = {setUpBits, readBits, nullptr, checkBits};
const Work MODBUS_WRITE_WORD = {setUpWords<IN_MEMORY>, writeWord, nullptr, checkWrites};
const Work MODBUS_WRITE_BIT = {setUpWords<IN_MEMORY>, readAndWriteWord, nullptr, checkBoth};
const Work MODBUS_READ_SOCKET = {setUpWords<OVER_SOCKET>, readWords, nullptr, checkWords};
const Work MODBUS_WRITE_WORD_SOCKET = {setUpWords<OVER_SOCKET>, writeWord, nullptr, checkWrites};
const Work BARE_READ_SOCKET = {setUpBareRead, bareCalls, nullptr, checkBare};
const Work BARE_WRITE_SOCKET = {setUpBareWrite, bareCalls, nullptr, checkBare};
