// Frames as tests write them.
#pragma once

#include "plc/wire.h"

#include <QList>

/// Bytes in hex, 55*512 for 512 times 55; a + adds the CRC of a local frame, a ~ the length byte
/// and the checksum of a remote one.
inline QByteArray bytes(const QByteArray& text)
{
    QByteArray made;
    for (const QByteArray& word : text.simplified().split(' ')) {
        const QList<QByteArray> value = word.split('*');
        const QByteArray once = QByteArray::fromHex(value.first());
        if (word == "+") {
            made = plc::withCrc(made);
        } else if (word == "~") {
            made.prepend(static_cast<char>((made.size() + 2) & 0xFF));
            plc::appendByte(made, plc::byteSum(made));
        } else if (once.toHex() != value.first().toLower()) {
            qFatal("not hex: %s", word.constData());
        } else {
            made += once.repeated(value.value(1, "1").toInt());
        }
    }
    return made;
}
