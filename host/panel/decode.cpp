#include "decode.h"

#include "../plc/wire.h"
#include "decode_local.h"
#include "decode_remote.h"

#include <QStringList>

using plc::byteAt;
using plc::CRC_BYTES;
using plc::wordAt;

namespace
{

constexpr int SHORTEST_REPLY = 3 + CRC_BYTES; // station, function, byte count or exception
constexpr int WRITE_REPLY_LENGTH = 8;
constexpr int FUNCTION_OFFSET = 1;
constexpr int THIRD_OFFSET = 2; // the byte count, the exception, the address
constexpr int LAST_FIELD_OFFSET = 4;
constexpr int BITS_PER_BYTE = 8;

/// Of "Modbus Application Protocol V1.1b3", section 7.
struct ExceptionText {
    int number;
    const char* name;
};
constexpr ExceptionText EXCEPTIONS[] = {
    {0x01, "illegal function"},      {0x02, "illegal address"},
    {0x03, "illegal value"},         {0x04, "device failure"},
    {0x05, "acknowledge"},           {0x06, "device busy"},
    {0x08, "memory parity error"},   {0x0A, "gateway path unavailable"},
    {0x0B, "gateway target silent"},
};

/// A reply in the making: what it is, what there is to remark, how long it should be.
struct Description {
    QString what;
    QStringList remarks;
    int length = 0;
};

Description describeException(const QByteArray& reply)
{
    const int number = byteAt(reply, THIRD_OFFSET);
    const char* name = "unknown";
    for (const ExceptionText& exception : EXCEPTIONS)
        if (exception.number == number)
            name = exception.name;
    return {QStringLiteral("exception %1 (%2)").arg(number).arg(QLatin1String(name)),
            {},
            SHORTEST_REPLY};
}

Description describeRead(const LineFunction& function, const QByteArray& reply,
                         const Wanted& wanted)
{
    const int bytes = byteAt(reply, THIRD_OFFSET);
    Description description{QLatin1String(function.elements), {}, SHORTEST_REPLY + bytes};
    const bool ours = wanted.code == function.code;
    const int expected = dataBytes(function, wanted.count);
    if (ours && bytes == expected) {
        description.remarks << counted(wanted.count, "value");
    } else {
        description.remarks << counted(bytes * BITS_PER_BYTE / function.bitsPerElement, "value");
        if (ours)
            description.remarks
                << QStringLiteral("byte count %1, %2 expected").arg(bytes).arg(expected);
    }
    return description;
}

QString valueText(const LineFunction& function, int field)
{
    if (function.shape == Shape::WriteBit && (field == 0 || field == BIT_ON))
        return QLatin1String(field == 0 ? "off" : "on");
    return QString::number(field);
}

Description describeWrite(const LineFunction& function, const QByteArray& reply,
                          const Wanted& wanted)
{
    Description description{
        QStringLiteral("wrote ") + QLatin1String(function.elements), {}, WRITE_REPLY_LENGTH};
    if (reply.size() < WRITE_REPLY_LENGTH)
        return description;
    const int address = wordAt(reply, THIRD_OFFSET);
    const int last = wordAt(reply, LAST_FIELD_OFFSET);
    const bool block = function.shape == Shape::WriteBlock;
    description.what += QLatin1Char(' ') + rangeText(function, address, block ? last : 1);
    if (!block)
        description.what += QStringLiteral(" = ") + valueText(function, last);
    if (wanted.code != function.code)
        return description;
    if (wanted.address >= 0 && address != wanted.address)
        description.remarks << rangeText(function, wanted.address, 1) +
                                   QStringLiteral(" was asked");
    if (wanted.echo >= 0 && last != wanted.echo)
        description.remarks << QStringLiteral("%1 %2 was asked")
                                   .arg(QLatin1String(block ? "count" : "value"),
                                        valueText(function, wanted.echo));
    return description;
}

Description describeBody(const QByteArray& reply, const Wanted& wanted)
{
    const int code = byteAt(reply, FUNCTION_OFFSET);
    if ((code & EXCEPTION_FLAG) != 0)
        return describeException(reply);
    const LineFunction* function = findFunction(code);
    if (function == nullptr)
        return {QStringLiteral("unknown function ") + hexByte(code), {}, reply.size()};
    return function->shape == Shape::Read ? describeRead(*function, reply, wanted)
                                          : describeWrite(*function, reply, wanted);
}

QString describeAnswer(const QByteArray& reply, const Wanted& wanted)
{
    if (reply.size() < SHORTEST_REPLY)
        return counted(reply.size(), "byte") + QStringLiteral(", too short for a reply");
    const int station = byteAt(reply, 0);
    const int code = byteAt(reply, FUNCTION_OFFSET) & ~EXCEPTION_FLAG;
    Description description = describeBody(reply, wanted);
    if (wanted.station >= 0 && station != wanted.station)
        description.remarks << QStringLiteral("station %1 was asked").arg(wanted.station);
    if (wanted.code != FC_NONE && code != wanted.code)
        description.remarks << QStringLiteral("function %1 was asked").arg(hexByte(wanted.code));
    description.remarks << lengthRemark(reply.size(), description.length)
                        << crcRemark(reply, description.length);
    description.remarks.removeAll(QString());
    return QStringLiteral("station %1 ").arg(station) + description.what + QStringLiteral(": ") +
           description.remarks.join(QStringLiteral(", "));
}

DecodedRequest decodeRequest(const QByteArray& frame, bool remote)
{
    return remote ? decodeRemoteRequest(frame) : decodeLocalRequest(frame);
}

/// Some adapters hear what they send. The right reply to a write of one word begins with the
/// request as well.
bool echoes(const QByteArray& reply, const QByteArray& request, bool remote)
{
    if (request.size() < SHORTEST_REPLY || !reply.startsWith(request))
        return false;
    return remote || byteAt(request, FUNCTION_OFFSET) != FC_WRITE_MEMORY_WORD;
}

} // namespace

QString describeRequest(const QByteArray& frame, bool remote)
{
    return decodeRequest(frame, remote).text;
}

QString describeReply(const QByteArray& reply, const QByteArray& request, bool remote)
{
    const Wanted wanted = decodeRequest(request, remote).wanted;
    if (!echoes(reply, request, remote))
        return describeAnswer(reply, wanted);
    const QByteArray rest = reply.mid(request.size());
    const QString echo = QStringLiteral("echo of the request");
    return rest.isEmpty() ? echo : echo + QStringLiteral(", then ") + describeAnswer(rest, wanted);
}

QString describeSilence(const QByteArray& request, bool remote)
{
    const int station = decodeRequest(request, remote).wanted.station;
    return station < 0 ? QStringLiteral("no reply")
                       : QStringLiteral("no reply from station %1").arg(station);
}

QString describeStray(const QByteArray& bytes)
{
    const QString discarded = counted(bytes.size(), "byte") + QStringLiteral(" discarded");
    if (bytes.size() < SHORTEST_REPLY || !crcGood(bytes, describeBody(bytes, {}).length))
        return discarded;
    return discarded + QStringLiteral(", ") + describeAnswer(bytes, {});
}
