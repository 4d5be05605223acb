#include "decode_remote.h"

#include "../plc/wire.h"
#include "../remote_layout.h"

#include <QStringList>

using plc::byteAt;
using plc::wordAt;
using namespace remote_layout;

namespace
{

constexpr int BITS_PER_BYTE = 8;
constexpr int BITS_PER_WORD = 16;
constexpr int BYTES_PER_WORD = 2;
constexpr quint32 LOCAL_ADDRESS_MASK = 0xFFFF; // of the reply

struct RemoteFields {
    int rwFlag, type, count;
    quint32 address;
    int dataSize, firstValue;
};

RemoteFields fieldsOf(const QByteArray& frame)
{
    const auto high = static_cast<quint32>(wordAt(frame, ADDRESS_OFFSET));
    const auto low = static_cast<quint32>(wordAt(frame, ADDRESS_OFFSET + BYTES_PER_WORD));
    const int dataSize = frame.size() - SHORTEST_REQUEST;
    return {byteAt(frame, RW_FLAG_OFFSET),
            wordAt(frame, TYPE_OFFSET),
            wordAt(frame, COUNT_OFFSET),
            high << BITS_PER_WORD | low,
            dataSize,
            dataSize > 0 ? byteAt(frame, DATA_OFFSET) : 0};
}

/// Reads count in native units, bytes of the bit areas; their replies carry no address.
void askRead(const RemoteFields& fields, Wanted* wanted)
{
    for (const LineFunction& function : LINE_FUNCTIONS) {
        if (function.shape != Shape::Read || function.area != REGISTER_TYPES[fields.type].area)
            continue;
        wanted->code = function.code;
        wanted->count = function.bitsPerElement == 1 ? fields.count * BITS_PER_BYTE : fields.count;
    }
}

/// A bit or byte of the memory area is written with its word, whose other part is not known here.
void askWrite(const RemoteFields& fields, Wanted* wanted)
{
    quint32 address = fields.address;
    switch (fields.type) {
    case MEMORY_BIT:
    case MEMORY_BYTE:
        wanted->code = FC_WRITE_MEMORY_WORD;
        address /= fields.type == MEMORY_BIT ? BITS_PER_WORD : BYTES_PER_WORD;
        break;
    case SPECIAL_BIT:
        wanted->code = FC_WRITE_SPECIAL_BIT;
        wanted->echo = fields.firstValue != 0 ? BIT_ON : 0;
        break;
    case MEMORY_WORD:
    case MEMORY_DWORD:
        wanted->code = FC_WRITE_MEMORY_WORDS;
        wanted->echo = fields.count;
        break;
    default:
        wanted->code = FC_WRITE_OUTPUT_BITS;
        wanted->echo = fields.count;
    }
    wanted->address = static_cast<int>(address & LOCAL_ADDRESS_MASK);
}

QString describe(const RemoteFields& fields, const QByteArray& frame)
{
    const bool known = fields.type < REGISTER_TYPE_COUNT;
    const QString type = known ? QString(QLatin1String(REGISTER_TYPES[fields.type].name))
                               : QStringLiteral("unknown type %1").arg(fields.type);
    const QString verb = fields.rwFlag == RW_READ ? QStringLiteral("read")
                         : fields.rwFlag == RW_WRITE
                             ? QStringLiteral("write")
                             : QStringLiteral("unknown flag %1").arg(fields.rwFlag);
    return QStringLiteral("station %1 %2 %3 %4, length %5 (remote, key %6, node %7)")
        .arg(byteAt(frame, STATION_OFFSET))
        .arg(verb, type)
        .arg(fields.address)
        .arg(fields.count)
        .arg(byteAt(frame, KEY_OFFSET))
        .arg(byteAt(frame, NODE_OFFSET));
}

/// The length byte counts the whole frame modulo 256.
QString lengthByteRemark(const QByteArray& frame)
{
    const int said = byteAt(frame, 0);
    if (said == (frame.size() & 0xFF))
        return QString();
    return QStringLiteral("length byte %1 of %2").arg(said).arg(counted(frame.size(), "byte"));
}

QString sumRemark(const QByteArray& frame)
{
    const int sum = plc::byteSum(frame.left(frame.size() - CHECKSUM_BYTES));
    if (sum == byteAt(frame, frame.size() - CHECKSUM_BYTES))
        return QString();
    return QStringLiteral("sum wrong, %1 expected").arg(hexByte(sum));
}

} // namespace

DecodedRequest decodeRemoteRequest(const QByteArray& frame)
{
    if (frame.size() < SHORTEST_REQUEST)
        return {counted(frame.size(), "byte") + QStringLiteral(", too short for a remote request"),
                {}};
    const RemoteFields fields = fieldsOf(frame);
    Wanted wanted;
    wanted.station = byteAt(frame, STATION_OFFSET);
    if (fields.type < REGISTER_TYPE_COUNT) {
        if (fields.rwFlag == RW_READ)
            askRead(fields, &wanted);
        else if (fields.rwFlag == RW_WRITE)
            askWrite(fields, &wanted);
    }
    QStringList remarks{describe(fields, frame)};
    if (fields.dataSize > 0)
        remarks << counted(fields.dataSize, "value byte");
    remarks << lengthByteRemark(frame) << sumRemark(frame);
    remarks.removeAll(QString());
    return {remarks.join(QStringLiteral(", ")), wanted};
}
