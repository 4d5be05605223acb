// Fields and check values of the frames. Written apart from the driver's, so that each side
// checks the other.
#ifndef PLC_WIRE_H
#define PLC_WIRE_H

#include <QByteArray>

namespace plc
{
inline constexpr int CRC_BYTES = 2;

int byteAt(const QByteArray& bytes, int index);
int wordAt(const QByteArray& bytes, int index); ///< 16 bits, high byte first
void appendByte(QByteArray& bytes, int value);  ///< the low 8 bits
void appendWord(QByteArray& bytes, int value);  ///< the low 16 bits, high byte first

quint16 crc16(const QByteArray& bytes); ///< 0 over a frame and its own trailer
QByteArray withCrc(QByteArray bytes);

int byteSum(const QByteArray& bytes); ///< modulo 256
} // namespace plc

#endif
