#include "decode_parts.h"

#include "../plc/wire.h"

#include <algorithm>

namespace
{

constexpr int BITS_PER_BYTE = 8;

QString addressText(const LineFunction& function, int address)
{
    if (!function.byteDotBit)
        return QString::number(address);
    return QStringLiteral("%1.%2").arg(address / BITS_PER_BYTE).arg(address % BITS_PER_BYTE);
}

} // namespace

const LineFunction* findFunction(int code)
{
    for (const LineFunction& function : LINE_FUNCTIONS)
        if (function.code == code)
            return &function;
    return nullptr;
}

int dataBytes(const LineFunction& function, int count)
{
    return (count * function.bitsPerElement + BITS_PER_BYTE - 1) / BITS_PER_BYTE;
}

QString rangeText(const LineFunction& function, int address, int count)
{
    QString text = QLatin1String(function.prefix) + addressText(function, address);
    if (count > 1)
        text += QStringLiteral("..") + addressText(function, address + count - 1);
    else if (count < 1)
        text += QStringLiteral(", count %1").arg(count);
    return text;
}

QString counted(int count, const char* thing)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(thing),
                                                    QLatin1String(count == 1 ? "" : "s"));
}

QString hexByte(int byte)
{
    return QStringLiteral("0x") + QString::asprintf("%02X", static_cast<unsigned>(byte));
}

QString lengthRemark(int size, int expected)
{
    if (size < expected)
        return counted(expected - size, "byte") + QStringLiteral(" missing");
    if (size > expected)
        return counted(size - expected, "byte") + QStringLiteral(" left over");
    return QString();
}

bool crcGood(const QByteArray& frame, int length)
{
    return plc::crc16(frame.left(length)) == 0;
}

QString crcRemark(const QByteArray& frame, int length)
{
    if (crcGood(frame, length))
        return QStringLiteral("CRC good");
    const int covered = std::min(length, frame.size()) - plc::CRC_BYTES;
    const QByteArray trailer = plc::withCrc(frame.left(covered)).mid(covered);
    return QStringLiteral("CRC wrong, %1 expected")
        .arg(QLatin1String(trailer.toHex(' ').toUpper()));
}
