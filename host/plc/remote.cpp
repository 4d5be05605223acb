#include "remote.h"

#include "../remote_layout.h"
#include "wire.h"

#include <talmor_kp410_port.h>

#include <utility>

namespace plc
{
namespace
{
using namespace remote_layout;

qint64 addressOf(const QByteArray& frame)
{
    const qint64 high = wordAt(frame, ADDRESS_OFFSET);
    return high << 16 | wordAt(frame, ADDRESS_OFFSET + 2);
}

/// Value bytes that a write of this type and length carries.
int valueBytes(int type, int length)
{
    switch (type) {
    case MEMORY_WORD:
    case MEMORY_DWORD:
        return 2 * length;
    case MEMORY_BIT:
    case MEMORY_BYTE:
    case SPECIAL_BIT:
        return 1;
    default:
        return (length + 7) / 8;
    }
}

Request parseRead(int type, qint64 address, int length)
{
    switch (REGISTER_TYPES[type].area) {
    case AREA_INPUT:
        return {FC_READ_INPUT_BITS, address * 8, length * 8};
    case AREA_OUTPUT:
        return {FC_READ_OUTPUT_BITS, address * 8, length * 8};
    case AREA_SPECIAL_BIT:
        return {FC_READ_SPECIAL_BITS, address * 8, length * 8};
    case AREA_SPECIAL_WORD:
        return {FC_READ_SPECIAL_WORDS, address, length};
    default:
        return {FC_READ_MEMORY_WORDS, address, length};
    }
}

Request wordRequest(qint64 address, int word)
{
    Request request{FC_WRITE_MEMORY_WORD, address, 1};
    appendWord(request.data, word);
    return request;
}

/// One bit or byte of the memory area, merged into the word that holds it.
Request parseMemoryPart(int type, qint64 address, int value, const Memory& memory)
{
    const int partsPerWord = type == MEMORY_BIT ? 16 : 2;
    const int partBits = 16 / partsPerWord;
    const qint64 wordAddress = address / partsPerWord;
    if (wordAddress >= memory.memoryWords.size())
        return wordRequest(wordAddress, 0);
    const int part = type == MEMORY_BIT ? (value != 0 ? 1 : 0) : value;
    const int shift = static_cast<int>(address % partsPerWord) * partBits;
    const int mask = ((1 << partBits) - 1) << shift;
    const int old = memory.memoryWords.at(static_cast<int>(wordAddress));
    return wordRequest(wordAddress, (old & ~mask) | part << shift);
}

QByteArray swappedWords(QByteArray data)
{
    char* bytes = data.data();
    for (int i = 0; i + 1 < data.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return data;
}

Request parseWrite(int type, qint64 address, int length, const QByteArray& data,
                   const Memory& memory)
{
    const int first = data.isEmpty() ? 0 : byteAt(data, 0);
    switch (type) {
    case MEMORY_BIT:
    case MEMORY_BYTE:
        return parseMemoryPart(type, address, first, memory);
    case MEMORY_WORD:
    case MEMORY_DWORD:
        return {FC_WRITE_MEMORY_WORDS, address, length, swappedWords(data)};
    case SPECIAL_BIT:
        return {FC_WRITE_SPECIAL_BIT, address, 1, QByteArray(1, first != 0 ? '\1' : '\0')};
    default:
        return {FC_WRITE_OUTPUT_BITS, address, length, data};
    }
}
} // namespace

int remoteFrameLength(const QByteArray& bytes, bool /*silent*/)
{
    if (bytes.size() < SHORTEST_REQUEST)
        return 0;
    // Byte 0 is the length modulo 256; the description tells about how long the frame must be.
    const bool writes = byteAt(bytes, RW_FLAG_OFFSET) == RW_WRITE;
    const int expected =
        SHORTEST_REQUEST +
        (writes ? valueBytes(wordAt(bytes, TYPE_OFFSET), wordAt(bytes, COUNT_OFFSET)) : 0);
    int length = expected + static_cast<qint8>(byteAt(bytes, 0) - expected);
    if (length < SHORTEST_REQUEST)
        length += 0x100;
    if (bytes.size() < length)
        return 0;
    const int sum = byteSum(bytes.left(length - CHECKSUM_BYTES));
    return sum == byteAt(bytes, length - CHECKSUM_BYTES) ? length : 0;
}

Request parseRemote(const QByteArray& frame, const Memory& memory)
{
    const int rwFlag = byteAt(frame, RW_FLAG_OFFSET);
    const int type = wordAt(frame, TYPE_OFFSET);
    const qint64 address = addressOf(frame);
    const int length = wordAt(frame, COUNT_OFFSET);
    if (type >= REGISTER_TYPE_COUNT || rwFlag > RW_WRITE)
        return {FC_NONE};
    if (rwFlag == RW_READ)
        return parseRead(type, address, length);
    if (!REGISTER_TYPES[type].writable)
        return {FC_NONE};
    const QByteArray data = frame.mid(DATA_OFFSET, frame.size() - SHORTEST_REQUEST);
    return parseWrite(type, address, length, data, memory);
}
} // namespace plc
