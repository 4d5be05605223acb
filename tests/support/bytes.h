/// Frames as hex text, with a CRC that does not come from the code under test.
#ifndef KP410_TESTS_BYTES_H
#define KP410_TESTS_BYTES_H

#include <QByteArray>
#include <QString>

inline QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(QByteArray(hex));
}

inline QString text(const char* latin1)
{
    return QString::fromLatin1(latin1);
}

/// CRC-16 bit by bit, low byte first.
inline QByteArray crcBytes(const QByteArray& frame)
{
    unsigned crc = 0xFFFF;
    for (int i = 0; i < frame.size(); ++i) {
        crc ^= static_cast<unsigned char>(frame.at(i));
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    QByteArray trailer;
    trailer.append(static_cast<char>(crc & 0xFF));
    trailer.append(static_cast<char>(crc >> 8));
    return trailer;
}

/// The frame with a good CRC behind it, so that a corrupt field reaches the check under test.
inline QByteArray withCrc(const QByteArray& frame)
{
    return frame + crcBytes(frame);
}

inline QByteArray withCrc(const char* hex)
{
    return withCrc(bytes(hex));
}

#endif
