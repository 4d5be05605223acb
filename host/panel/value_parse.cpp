// Values typed by people.
#include "tag.h"
#include "value.h"

#include <QRegularExpression>

#include <cmath>
#include <cstring>
#include <limits>

namespace
{

constexpr int BITS_PER_BYTE = 8;
constexpr int DECIMAL_BASE = 10;
constexpr int HEX_BASE = 16;

qint64 highestOf(Format format, int width)
{
    return format == Format::Hex ? (qint64{1} << (BITS_PER_BYTE * width)) - 1
                                 : formatInfo(format).highest;
}

bool parseInteger(const QString& text, Format format, int width, quint32* bits)
{
    static const QRegularExpression decimal(QStringLiteral("\\A[+-]?[0-9]+\\z"));
    static const QRegularExpression unsignedDecimal(QStringLiteral("\\A\\+?[0-9]+\\z"));
    static const QRegularExpression prefixedHex(QStringLiteral("\\A0[xX][0-9A-Fa-f]+\\z"));
    static const QRegularExpression hex(QStringLiteral("\\A(0[xX])?[0-9A-Fa-f]+\\z"));
    const bool inHex = (format == Format::Hex ? hex : prefixedHex).match(text).hasMatch();
    const bool isSigned = formatInfo(format).lowest < 0;
    const bool inDecimal =
        format != Format::Hex && (isSigned ? decimal : unsignedDecimal).match(text).hasMatch();
    if (!inHex && !inDecimal)
        return false;
    bool good = false;
    const qint64 value = text.toLongLong(&good, inHex ? HEX_BASE : DECIMAL_BASE);
    *bits = static_cast<quint32>(value);
    return good && value >= formatInfo(format).lowest && value <= highestOf(format, width);
}

bool parseBool(const QString& text, quint32* bits)
{
    static const QStringList off = {QStringLiteral("0"), QStringLiteral("false"),
                                    QStringLiteral("off")};
    static const QStringList on = {QStringLiteral("1"), QStringLiteral("true"),
                                   QStringLiteral("on")};
    const QString word = text.toLower();
    *bits = on.contains(word) ? 1 : 0;
    return on.contains(word) || off.contains(word);
}

bool parseFloat(const QString& text, quint32* bits)
{
    bool good = false;
    const float value = text.toFloat(&good);
    std::memcpy(bits, &value, sizeof value);
    return good && std::isfinite(value);
}

bool parseOne(const QString& text, Format format, int width, quint32* bits)
{
    switch (format) {
    case Format::Bool:
        return parseBool(text, bits);
    case Format::Float32:
        return parseFloat(text, bits);
    default:
        return parseInteger(text, format, width, bits);
    }
}

QString expectedValue(Format format, int width)
{
    switch (format) {
    case Format::Bool:
        return QStringLiteral("0, 1, false, true, off or on");
    case Format::Float32: {
        const double highest = static_cast<double>(std::numeric_limits<float>::max());
        return QStringLiteral("a number from -%1 to %1, such as -1.5 or 2e3").arg(highest);
    }
    case Format::Hex:
        return QStringLiteral("a hex number from %1 to %2")
            .arg(textOfBits(0, format, width),
                 textOfBits(static_cast<quint32>(highestOf(format, width)), format, width));
    default:
        return QStringLiteral("a whole number from %1 to %2, decimal or 0x and hex digits")
            .arg(formatInfo(format).lowest)
            .arg(formatInfo(format).highest);
    }
}

} // namespace

ParsedValue parseValue(const Tag& tag, const QString& text)
{
    const int width = formatWidth(tag.type, tag.format);
    const QStringList parts = text.split(QLatin1Char(';'));
    const int count = valueBytes(tag) / width;
    ParsedValue parsed;
    if (parts.size() != count) {
        const QString expected = count == 1
                                     ? QStringLiteral("one value")
                                     : QStringLiteral("%1 values separated by ';'").arg(count);
        parsed.error = QStringLiteral("expected %1, not %2").arg(expected).arg(parts.size());
        return parsed;
    }
    // A host write takes each byte in a 16-bit slot.
    const int slot = REGISTER_TYPES[tag.type].definition == DEF_BYTE ? 2 : width;
    QStringList shown;
    for (const QString& part : parts) {
        quint32 bits = 0;
        if (!parseOne(part.trimmed(), tag.format, width, &bits)) {
            const QString expected = expectedValue(tag.format, width);
            return {{}, {}, QStringLiteral("expected %1, not '%2'").arg(expected, part.trimmed())};
        }
        shown << textOfBits(bits, tag.format, width);
        for (int i = 0; i < slot; ++i)
            parsed.bytes += static_cast<char>(i < width ? bits >> (BITS_PER_BYTE * i) : 0U);
    }
    parsed.shown = shown.join(QLatin1Char(' '));
    return parsed;
}
