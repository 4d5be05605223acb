#include "encode/frame.h"

#include "check/Func_Check.h"
#include "check/arith.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int LARGEST_READ_DATA = std::numeric_limits<int>::max() - READ_DATA_OFFSET - CRC_BYTES;
constexpr int REMOTE_HEAD_BYTES = 21;
constexpr int CHECKSUM_BYTES = 1;
constexpr int SHORT_FRAME_BYTES = 8; // reads and single writes

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
    append16(frame, value >> 16);
    append16(frame, value);
}

void appendCrc(QByteArray& frame)
{
    const int crc = crcOf(frame, frame.size());
    const char bytes[] = {byteOf(crc, 0), byteOf(crc, 8)};
    frame.append(bytes, sizeof bytes);
}

QByteArray localHead(int station, int functionCode, int address)
{
    const char head[] = {byteOf(station, 0), byteOf(functionCode, 0), byteOf(address, 8),
                         byteOf(address, 0)};
    QByteArray frame;
    frame.reserve(SHORT_FRAME_BYTES);
    frame.append(head, sizeof head);
    return frame;
}

QByteArray readRequest(int station, int functionCode, int address, int count)
{
    QByteArray frame = localHead(station, functionCode, address);
    append16(frame, count);
    appendCrc(frame);
    return frame;
}

QByteArray readRequestOf(const RW_VAR& var)
{
    const AreaInfo* area = findArea(getPlcReg(var.regType));
    const int code = area ? area->readCode : int{FC_NONE};
    const int units = area ? area->wireUnitsPerUnit : 1;
    return readRequest(var.station, code, wrapMul(var.address, units), wrapMul(var.length, units));
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
    QByteArray wire(2 * words, '\0');
    char* out = wire.data();
    for (int i = 0; i < std::min(wire.size(), data.size()); ++i)
        out[i ^ 1] = data.at(i);
    return wire;
}
