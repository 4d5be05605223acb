#include "decode_local.h"

#include "../plc/wire.h"

#include <QStringList>

#include <algorithm>

using plc::byteAt;
using plc::CRC_BYTES;
using plc::wordAt;

namespace
{

constexpr int SHORTEST_REQUEST = 2 + CRC_BYTES; // station, function
constexpr int FUNCTION_OFFSET = 1;
constexpr int ADDRESS_OFFSET = 2;
constexpr int SECOND_FIELD_OFFSET = 4; // the count, the value of a word, the value byte of a bit
constexpr int BYTE_COUNT_OFFSET = 6;
constexpr int FIXED_LENGTH = 8;
constexpr int BIT_LENGTH = 9;
constexpr int BLOCK_LENGTH = 9;              // without its data
constexpr int FLAG_FROM_END = 2 + CRC_BYTES; // of a bit: the flag, a zero byte, the CRC

int expectedLength(const LineFunction& function, const QByteArray& frame)
{
    switch (function.shape) {
    case Shape::WriteBit:
        return BIT_LENGTH;
    case Shape::WriteBlock:
        return BLOCK_LENGTH + (frame.size() < BLOCK_LENGTH ? 0 : byteAt(frame, BYTE_COUNT_OFFSET));
    default:
        return FIXED_LENGTH;
    }
}

/// @param frame has the length of a read at least
QString bitText(const QByteArray& frame, Wanted* wanted, QStringList* remarks)
{
    wanted->count = 1;
    wanted->echo = wordAt(frame, std::min(frame.size(), BIT_LENGTH) - FLAG_FROM_END);
    const bool on = byteAt(frame, SECOND_FIELD_OFFSET) != 0;
    if (wanted->echo != (on ? BIT_ON : 0))
        *remarks << QStringLiteral("value and flag disagree");
    return QLatin1String(on ? " = on" : " = off");
}

/// What the fields behind the function code say.
QString fieldsText(const LineFunction& function, const QByteArray& frame, Wanted* wanted,
                   QStringList* remarks)
{
    wanted->address = wordAt(frame, ADDRESS_OFFSET);
    const int second = wordAt(frame, SECOND_FIELD_OFFSET);
    wanted->count = second;
    QString value;
    if (function.shape == Shape::WriteBit) {
        value = bitText(frame, wanted, remarks);
    } else if (function.shape == Shape::WriteWord) {
        wanted->count = 1;
        wanted->echo = second;
        value = QStringLiteral(" = %1").arg(second);
    } else if (function.shape == Shape::WriteBlock) {
        wanted->echo = second;
        const int bytes = frame.size() < BLOCK_LENGTH ? -1 : byteAt(frame, BYTE_COUNT_OFFSET);
        const int expected = dataBytes(function, second);
        if (bytes >= 0 && bytes != expected)
            *remarks << QStringLiteral("byte count %1, %2 expected").arg(bytes).arg(expected);
    }
    return QLatin1Char(' ') + rangeText(function, wanted->address, wanted->count) + value;
}

} // namespace

DecodedRequest decodeLocalRequest(const QByteArray& frame)
{
    if (frame.size() < SHORTEST_REQUEST)
        return {counted(frame.size(), "byte") + QStringLiteral(", too short for a request"), {}};
    Wanted wanted;
    wanted.station = byteAt(frame, 0);
    wanted.code = byteAt(frame, FUNCTION_OFFSET);
    QString text = QStringLiteral("station %1 ").arg(wanted.station);
    QStringList remarks;
    int length = frame.size();
    if (const LineFunction* function = findFunction(wanted.code)) {
        length = expectedLength(*function, frame);
        text += QLatin1String(function->shape == Shape::Read ? "read " : "write ") +
                QLatin1String(function->elements);
        if (frame.size() >= FIXED_LENGTH)
            text += fieldsText(*function, frame, &wanted, &remarks);
        remarks << lengthRemark(frame.size(), length);
    } else {
        text += QStringLiteral("unknown function ") + hexByte(wanted.code);
    }
    if (!crcGood(frame, length))
        remarks << crcRemark(frame, length);
    remarks.removeAll(QString());
    remarks.prepend(text);
    return {remarks.join(QStringLiteral(", ")), wanted};
}
