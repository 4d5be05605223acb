#include "format.h"

#include <limits>

namespace
{

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
static_assert(sizeof(FORMATS) / sizeof(FORMATS[0]) == static_cast<int>(Format::Hex) + 1,
              "one row for each format");

} // namespace

const FormatInfo& formatInfo(Format format)
{
    return FORMATS[static_cast<int>(format)];
}

bool formatByName(const QString& name, Format* format)
{
    const int index = formatNames().indexOf(name.toLower());
    if (index >= 0)
        *format = static_cast<Format>(index);
    return index >= 0;
}

QStringList formatNames()
{
    QStringList names;
    for (const FormatInfo& f : FORMATS)
        names << QLatin1String(f.name);
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

int defaultLength(int type, Format format)
{
    const RegisterTypeInfo& t = REGISTER_TYPES[type];
    return t.definition == DEF_DWORD ? WORDS_PER_DWORD
                                     : formatWidth(type, format) / t.bytesPerElement;
}

int formatWidth(int type, Format format)
{
    const int bytes = formatInfo(format).bytes;
    return bytes != 0 ? bytes : REGISTER_TYPES[type].bytesPerElement;
}

int bytesOfLength(int type, int length)
{
    const RegisterTypeInfo& t = REGISTER_TYPES[type];
    return t.bytesPerElement *
           (t.definition == DEF_DWORD ? (length + 1) / WORDS_PER_DWORD : length);
}

QString formatProblem(int type, int length, Format format)
{
    const RegisterTypeInfo& t = REGISTER_TYPES[type];
    if ((t.definition == DEF_BIT) != (format == Format::Bool))
        return t.definition == DEF_BIT ? QStringLiteral("format bool for a bit")
                                       : QStringLiteral("a number format, bool is for bits");
    if (t.definition == DEF_DWORD && length % WORDS_PER_DWORD != 0)
        return QStringLiteral("an even length, a double word is two 16-bit words");
    const int width = formatWidth(type, format);
    if (width < t.bytesPerElement || (width > t.bytesPerElement && t.definition != DEF_WORD))
        return QStringLiteral("a format as wide as the element, %1 byte(s)").arg(t.bytesPerElement);
    if (bytesOfLength(type, length) % width != 0)
        return QStringLiteral("an even length, the format takes two words");
    return QString();
}
