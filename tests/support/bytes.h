/// Bytes as hex text, texts with values in them, and a CRC that does not come from the code under
/// test.
#ifndef KP410_TESTS_BYTES_H
#define KP410_TESTS_BYTES_H

#include <QByteArray>
#include <QString>

inline QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(QByteArray(hex));
}

/// `latin1` with each value in the place of its "%1", "%2" and so on.
template <typename... Values>
QString text(const char* latin1, const Values&... values)
{
    QString filled = QString::fromLatin1(latin1);
    ((filled = filled.arg(values)), ...);
    return filled;
}

/// CRC-16 bit by bit, low byte first.
inline QByteArray crcBytes(const QByteArray& frame)
{
    unsigned crc = 0xFFFF;
    for (const char byte : frame) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    const char trailer[] = {static_cast<char>(crc & 0xFF), static_cast<char>(crc >> 8)};
    return QByteArray(trailer, sizeof trailer);
}

/// The frame with a good CRC behind it, so that a corrupt field reaches the check under test.
inline QByteArray withCrc(const QByteArray& frame)
{
    return frame + crcBytes(frame);
}

#endif
