#include "encode/frame.h"

#include "check/Func_Check.h"
#include "check/arith.h"
#include "data/image.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int LARGEST_READ_DATA = std::numeric_limits<int>::max() - READ_DATA_OFFSET - CRC_BYTES;
constexpr int REMOTE_HEAD_BYTES = 21;
constexpr int CHECKSUM_BYTES = 1;

char byteOf(int value, int shift)
{
    return static_cast<char>(byteAt(value, shift));
}
} // namespace

ReplyShape replyOfRead(int regType, int length)
{
    const AreaInfo* area = findArea(getPlcReg(regType));
    const qint64 bytes = area ? qint64{area->bytesPerUnit} * length : 0;
    const int data = std::min(clampToCount(bytes), LARGEST_READ_DATA);
    return {READ_DATA_OFFSET + data + CRC_BYTES, READ_DATA_OFFSET, data};
}

void append8(QByteArray& frame, int value)
{
    frame.append(byteOf(value, 0));
}

void append16(QByteArray& frame, int value)
{
    const char bytes[] = {byteOf(value, 8), byteOf(value, 0)};
    frame.append(bytes, sizeof bytes);
}

void append32(QByteArray& frame, int value)
{
    const char bytes[] = {byteOf(value, 24), byteOf(value, 16), byteOf(value, 8), byteOf(value, 0)};
    frame.append(bytes, sizeof bytes);
}

void appendCrc(QByteArray& frame)
{
    const int crc = crcOf(frame, frame.size());
    const char bytes[] = {byteOf(crc, 0), byteOf(crc, 8)};
    frame.append(bytes, sizeof bytes);
}

ShortFrame shortHead(int station, int functionCode, int address)
{
    return {byteOf(station, 0), byteOf(functionCode, 0), byteOf(address, 8), byteOf(address, 0)};
}

QByteArray localHead(int station, int functionCode, int address)
{
    constexpr int headBytes = 4;
    const ShortFrame head = shortHead(station, functionCode, address);
    QByteArray frame;
    frame.reserve(SHORT_FRAME_BYTES);
    frame.append(head.data(), headBytes);
    return frame;
}

ShortFrame shortRequest(int station, int functionCode, int address, int value)
{
    constexpr int crcAt = SHORT_FRAME_BYTES - CRC_BYTES;
    ShortFrame frame = shortHead(station, functionCode, address);
    frame[crcAt - 2] = byteOf(value, 8);
    frame[crcAt - 1] = byteOf(value, 0);
    const int crc = CalCRC(reinterpret_cast<const unsigned char*>(frame.data()), crcAt);
    frame[crcAt] = byteOf(crc, 0);
    frame[crcAt + 1] = byteOf(crc, 8);
    return frame;
}

ShortFrame readRequestOf(const RW_VAR& var)
{
    const AreaInfo* area = findArea(getPlcReg(var.regType));
    const int code = area ? area->readCode : int{FC_NONE};
    const int units = area ? area->wireUnitsPerUnit : 1;
    return shortRequest(var.station, code, wrapMul(var.address, units), wrapMul(var.length, units));
}

QByteArray remoteRequest(const RW_VAR& var, const QByteArray& data)
{
    const int length = REMOTE_HEAD_BYTES + data.size() + CHECKSUM_BYTES;
    QByteArray frame;
    frame.reserve(length);
    append8(frame, length);
    append8(frame, var.hostKey);
    append8(frame, var.rwFlag);
    append8(frame, var.nodeId);
    append8(frame, var.station);
    append16(frame, var.regType);
    append32(frame, var.address);
    append16(frame, var.length);
    append32(frame, var.rmwStep);
    append32(frame, var.auxParam);
    frame.append(data);
    append8(frame, CalSUM(wireBytes(frame), static_cast<unsigned short>(frame.size())));
    return frame;
}

QByteArray wireWords(const QByteArray& data, int words)
{
    QByteArray wire(BYTES_PER_WORD * words, '\0');
    const int present = std::min(words, data.size() / BYTES_PER_WORD);
    unsigned char* out = reinterpret_cast<unsigned char*>(wire.data());
    putSwappedWords(out, data, 0, present);
    if (present < words && data.size() % BYTES_PER_WORD != 0) // half a word, its low byte
        out[BYTES_PER_WORD * present + 1] = wireBytes(data)[data.size() - 1];
    return wire;
}
