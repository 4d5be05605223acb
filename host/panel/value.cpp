#include "value.h"

#include "tag.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace
{

struct FormatInfo {
    const char* name;
    int bytes; ///< 0: as wide as the element
    qint64 lowest, highest;
};

template <class Int>
constexpr FormatInfo integer(const char* name)
{
    return {name, sizeof(Int), std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()};
}

// Indexed by Format.
constexpr FormatInfo FORMATS[] = {
    {"bool", 1, 0, 1},          integer<qint8>("int8"),     integer<quint8>("uint8"),
    integer<qint16>("int16"),   integer<quint16>("uint16"), integer<qint32>("int32"),
    integer<quint32>("uint32"), {"float32", 4, 0, 0},       {"hex", 0, 0, 0},
};
constexpr int FORMAT_COUNT = sizeof(FORMATS) / sizeof(FORMATS[0]);
constexpr int BITS_PER_BYTE = 8;

const FormatInfo& info(Format format)
{
    return FORMATS[static_cast<int>(format)];
}

int widthOf(int type, Format format)
{
    return info(format).bytes != 0 ? info(format).bytes : REGISTER_TYPES[type].bytesPerElement;
}

int bytesOf(int type, int length)
{
    const RegisterTypeInfo& t = REGISTER_TYPES[type];
    return t.bytesPerElement * (t.definition == DEF_DWORD ? (length + 1) / 2 : length);
}

quint32 readLittleEndian(const QByteArray& raw, int at, int width)
{
    quint32 value = 0;
    for (int i = width - 1; i >= 0; --i)
        value = (value << BITS_PER_BYTE) | (at + i < raw.size() ? quint8(raw.at(at + i)) : 0U);
    return value;
}

QString formatOne(quint32 bits, Format format, int width)
{
    switch (format) {
    case Format::Int8:
        return QString::number(static_cast<qint8>(bits));
    case Format::Int16:
        return QString::number(static_cast<qint16>(bits));
    case Format::Int32:
        return QString::number(static_cast<qint32>(bits));
    case Format::Float32: {
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return QString::number(static_cast<double>(value), 'g', 7);
    }
    case Format::Hex:
        return QStringLiteral("0x%1").arg(bits, 2 * width, 16, QLatin1Char('0'));
    default:
        return QString::number(bits);
    }
}

bool parseInteger(const QString& text, Format format, int width, quint32* bits, QString* error)
{
    const bool prefixed = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    const int base = prefixed || format == Format::Hex ? 16 : 10;
    bool good = false;
    const qint64 value = text.toLongLong(&good, base);
    if (!good) {
        *error = QStringLiteral("'%1' is not a number").arg(text);
        return false;
    }
    const bool hex = format == Format::Hex;
    const qint64 lowest = hex ? 0 : info(format).lowest;
    const qint64 highest = hex ? (qint64{1} << (BITS_PER_BYTE * width)) - 1 : info(format).highest;
    if (value < lowest || value > highest) {
        *error = QStringLiteral("%1 is outside %2 to %3").arg(text).arg(lowest).arg(highest);
        return false;
    }
    *bits = static_cast<quint32>(value);
    return true;
}

bool parseBool(const QString& text, quint32* bits, QString* error)
{
    static const QStringList off = {QStringLiteral("0"), QStringLiteral("false"),
                                    QStringLiteral("off")};
    static const QStringList on = {QStringLiteral("1"), QStringLiteral("true"),
                                   QStringLiteral("on")};
    const QString word = text.toLower();
    *bits = on.contains(word) ? 1 : 0;
    if (on.contains(word) || off.contains(word))
        return true;
    *error = QStringLiteral("'%1' is none of 0, 1, false, true, off, on").arg(text);
    return false;
}

bool parseFloat(const QString& text, quint32* bits, QString* error)
{
    bool good = false;
    const float value = text.toFloat(&good);
    if (!good || !std::isfinite(value)) {
        *error = QStringLiteral("'%1' is not a 32-bit floating-point number").arg(text);
        return false;
    }
    std::memcpy(bits, &value, sizeof value);
    return true;
}

bool parseOne(const QString& text, Format format, int width, quint32* bits, QString* error)
{
    switch (format) {
    case Format::Bool:
        return parseBool(text, bits, error);
    case Format::Float32:
        return parseFloat(text, bits, error);
    default:
        return parseInteger(text, format, width, bits, error);
    }
}

} // namespace

bool formatByName(const QString& name, Format* format)
{
    const int index = formatNames().indexOf(name);
    if (index >= 0)
        *format = static_cast<Format>(index);
    return index >= 0;
}

QStringList formatNames()
{
    QStringList names;
    for (const FormatInfo& f : FORMATS)
        names << QLatin1String(f.name);
    static_assert(FORMAT_COUNT == static_cast<int>(Format::Hex) + 1, "one row for each format");
    return names;
}

Format defaultFormat(int type)
{
    switch (REGISTER_TYPES[type].definition) {
    case DEF_BIT:
        return Format::Bool;
    case DEF_BYTE:
        return Format::Uint8;
    case DEF_WORD:
        return Format::Uint16;
    default:
        return Format::Uint32;
    }
}

QString formatProblem(int type, int length, Format format)
{
    const RegisterTypeInfo& t = REGISTER_TYPES[type];
    if ((t.definition == DEF_BIT) != (format == Format::Bool))
        return t.definition == DEF_BIT ? QStringLiteral("format bool for a bit")
                                       : QStringLiteral("a number format, bool is for bits");
    if (t.definition == DEF_DWORD && length % 2 != 0)
        return QStringLiteral("an even length, a double word is two 16-bit words");
    const int width = widthOf(type, format);
    if (width < t.bytesPerElement || (width > t.bytesPerElement && t.definition != DEF_WORD))
        return QStringLiteral("a format as wide as the element, %1 bytes").arg(t.bytesPerElement);
    if (bytesOf(type, length) % width != 0)
        return QStringLiteral("an even length, the format takes two words");
    return QString();
}

int valueBytes(const Tag& tag)
{
    return bytesOf(tag.type, tag.length);
}

QString formatValue(const Tag& tag, const QByteArray& raw)
{
    const int width = widthOf(tag.type, tag.format);
    QStringList texts;
    for (int at = 0; at < valueBytes(tag); at += width)
        texts << formatOne(readLittleEndian(raw, at, width), tag.format, width);
    return texts.join(QLatin1Char(' '));
}

ParsedValue parseValue(const Tag& tag, const QString& text)
{
    const int width = widthOf(tag.type, tag.format);
    const QStringList parts = text.split(QLatin1Char(';'));
    if (parts.size() * width != valueBytes(tag))
        return {
            {},
            {},
            QStringLiteral("%1 value(s) expected, separated by ';'").arg(valueBytes(tag) / width)};
    // A host write takes each byte in a 16-bit slot.
    const int slot = REGISTER_TYPES[tag.type].definition == DEF_BYTE ? 2 : width;
    ParsedValue parsed;
    QStringList shown;
    for (const QString& part : parts) {
        quint32 bits = 0;
        if (!parseOne(part.trimmed(), tag.format, width, &bits, &parsed.error))
            return {{}, {}, parsed.error};
        shown << formatOne(bits, tag.format, width);
        for (int i = 0; i < slot; ++i)
            parsed.bytes += static_cast<char>(i < width ? bits >> (BITS_PER_BYTE * i) : 0U);
    }
    parsed.shown = shown.join(QLatin1Char(' '));
    return parsed;
}
