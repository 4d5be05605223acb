#include "answer.h"

#include "wire.h"

#include <talmor_kp410_port.h>

namespace plc
{
namespace
{
struct Function {
    int code;
    int area;
    bool writes;
    int limit;        ///< most elements of one request
    bool echoesValue; ///< the reply to a write ends in the value, not in the count
};

constexpr int MAX_READ_BITS = 2000;
constexpr int MAX_READ_WORDS = 125;
constexpr int MAX_WRITE_BITS = 1968;
constexpr int MAX_WRITE_WORDS = 123;

constexpr Function FUNCTIONS[] = {
    {FC_READ_OUTPUT_BITS, AREA_OUTPUT, false, MAX_READ_BITS, false},
    {FC_READ_INPUT_BITS, AREA_INPUT, false, MAX_READ_BITS, false},
    {FC_READ_MEMORY_WORDS, AREA_MEMORY, false, MAX_READ_WORDS, false},
    {FC_READ_SPECIAL_BITS, AREA_SPECIAL_BIT, false, MAX_READ_BITS, false},
    {FC_READ_SPECIAL_WORDS, AREA_SPECIAL_WORD, false, MAX_READ_WORDS, false},
    {FC_WRITE_MEMORY_WORD, AREA_MEMORY, true, 1, true},
    {FC_WRITE_MEMORY_WORDS, AREA_MEMORY, true, MAX_WRITE_WORDS, false},
    {FC_WRITE_OUTPUT_BITS, AREA_OUTPUT, true, MAX_WRITE_BITS, false},
    {FC_WRITE_SPECIAL_BIT, AREA_SPECIAL_BIT, true, 1, true},
};

constexpr int BIT_ON = 0xFF00; ///< the value field of a single bit that is set

const Function* findFunction(int code)
{
    for (const Function& function : FUNCTIONS)
        if (function.code == code)
            return &function;
    return nullptr;
}

QByteArray header(int station, int function)
{
    QByteArray reply;
    appendByte(reply, station);
    appendByte(reply, function);
    return reply;
}

QByteArray readReply(int station, const Request& request, const QByteArray& data)
{
    QByteArray reply = header(station, request.function);
    appendByte(reply, data.size());
    return withCrc(reply + data);
}

QByteArray writeReply(int station, const Request& request, int lastField)
{
    QByteArray reply = header(station, request.function);
    appendWord(reply, static_cast<int>(request.address & 0xFFFF));
    appendWord(reply, lastField);
    return withCrc(reply);
}
} // namespace

QByteArray exceptionReply(int station, int function, int code)
{
    QByteArray reply = header(station, function | EXCEPTION_FLAG);
    appendByte(reply, code);
    return withCrc(reply);
}

QByteArray answer(Memory& memory, int station, const Request& request)
{
    const Function* function = findFunction(request.function);
    if (function == nullptr)
        return exceptionReply(station, request.function, ILLEGAL_FUNCTION);

    QBitArray* bits = bitArea(memory, function->area);
    QVector<quint16>* words = wordArea(memory, function->area);
    const int count = request.count;
    const int dataSize = bits != nullptr ? (count + 7) / 8 : 2 * count;
    if (count < 1 || count > function->limit)
        return exceptionReply(station, request.function, ILLEGAL_VALUE);
    if (function->writes && request.data.size() != dataSize)
        return exceptionReply(station, request.function, ILLEGAL_VALUE);
    const int areaSize = bits != nullptr ? bits->size() : words->size();
    if (request.address + count > areaSize)
        return exceptionReply(station, request.function, ILLEGAL_ADDRESS);

    const int first = static_cast<int>(request.address);
    if (!function->writes)
        return readReply(station, request,
                         bits != nullptr ? packBits(*bits, first, count)
                                         : packWords(*words, first, count));
    if (bits != nullptr)
        unpackBits(*bits, first, count, request.data);
    else
        unpackWords(*words, first, count, request.data);
    if (!function->echoesValue)
        return writeReply(station, request, count);
    if (words != nullptr)
        return writeReply(station, request, words->at(first));
    return writeReply(station, request, bits->testBit(first) ? BIT_ON : 0);
}
} // namespace plc
