#include "wire.h"

namespace plc
{
namespace
{
constexpr int CRC_START = 0xFFFF;
constexpr int CRC_POLYNOMIAL = 0xA001;
} // namespace

int byteAt(const QByteArray& bytes, int index)
{
    return static_cast<quint8>(bytes.at(index));
}

int wordAt(const QByteArray& bytes, int index)
{
    return byteAt(bytes, index) << 8 | byteAt(bytes, index + 1);
}

void appendByte(QByteArray& bytes, int value)
{
    bytes.append(static_cast<char>(value & 0xFF));
}

void appendWord(QByteArray& bytes, int value)
{
    appendByte(bytes, value >> 8);
    appendByte(bytes, value);
}

quint16 crc16(const QByteArray& bytes)
{
    int crc = CRC_START;
    for (int i = 0; i < bytes.size(); ++i) {
        crc ^= byteAt(bytes, i);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ CRC_POLYNOMIAL : crc >> 1;
    }
    return static_cast<quint16>(crc);
}

QByteArray withCrc(QByteArray bytes)
{
    const int crc = crc16(bytes);
    appendByte(bytes, crc);
    appendByte(bytes, crc >> 8);
    return bytes;
}

int byteSum(const QByteArray& bytes)
{
    int sum = 0;
    for (int i = 0; i < bytes.size(); ++i)
        sum = (sum + byteAt(bytes, i)) & 0xFF;
    return sum;
}
} // namespace plc
