// Frames as tests write them: hex, with the trailer written out or made.
#ifndef TESTS_PLC_FRAMES_H
#define TESTS_PLC_FRAMES_H

#include "plc/wire.h"

inline QByteArray hex(const QByteArray& text)
{
    return QByteArray::fromHex(text);
}
inline QByteArray crc(const QByteArray& text)
{
    return plc::withCrc(hex(text));
}

inline QByteArray remoteFrame(const QByteArray& description, const QByteArray& data = {})
{
    QByteArray frame(1, static_cast<char>((22 + data.size()) & 0xFF));
    frame += hex(description) + data;
    int sum = 0;
    for (const char byte : frame)
        sum += static_cast<unsigned char>(byte);
    return frame + static_cast<char>(sum & 0xFF);
}

#endif
