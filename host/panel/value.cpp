#include "value.h"

#include "tag.h"

#include <QStringList>

#include <array>
#include <charconv>
#include <cstring>

namespace
{

constexpr int BITS_PER_BYTE = 8;
constexpr int HEX_DIGITS_PER_BYTE = 2;
constexpr int HEX_BASE = 16;

quint32 readLittleEndian(const QByteArray& raw, int at, int width)
{
    quint32 value = 0;
    for (int i = width - 1; i >= 0; --i)
        value = (value << BITS_PER_BYTE) | (at + i < raw.size() ? quint8(raw.at(at + i)) : 0U);
    return value;
}

/// As many digits as tell the value from its neighbours.
QString floatText(float value)
{
    std::array<char, 32> text = {};
    const auto end = std::to_chars(text.begin(), text.end(), value).ptr;
    return QString::fromLatin1(text.data(), static_cast<int>(end - text.begin()));
}

} // namespace

int valueBytes(const Tag& tag)
{
    return bytesOfLength(tag.type, tag.length);
}

QVector<quint32> valueBits(const Tag& tag, const QByteArray& raw)
{
    QVector<quint32> values;
    const int width = formatWidth(tag.type, tag.format);
    for (int at = 0; at < valueBytes(tag); at += width)
        values << readLittleEndian(raw, at, width);
    return values;
}

qint64 integerOfBits(quint32 bits, Format format)
{
    switch (format) {
    case Format::Int8:
        return static_cast<qint8>(bits);
    case Format::Int16:
        return static_cast<qint16>(bits);
    case Format::Int32:
        return static_cast<qint32>(bits);
    default:
        return bits;
    }
}

float floatOfBits(quint32 bits)
{
    float value = 0;
    static_assert(sizeof value == sizeof bits, "a float is 32 bits wide");
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QString textOfBits(quint32 bits, Format format, int width)
{
    switch (format) {
    case Format::Float32:
        return floatText(floatOfBits(bits));
    case Format::Hex:
        return QStringLiteral("0x%1").arg(bits, HEX_DIGITS_PER_BYTE * width, HEX_BASE,
                                          QLatin1Char('0'));
    default:
        return QString::number(integerOfBits(bits, format));
    }
}

QString formatValue(const Tag& tag, const QByteArray& raw)
{
    const int width = formatWidth(tag.type, tag.format);
    QStringList texts;
    for (const quint32 bits : valueBits(tag, raw))
        texts << textOfBits(bits, tag.format, width);
    return texts.join(QLatin1Char(' '));
}
