#include "tag_address.h"

#include "format.h"

#include <QStringList>

#include <algorithm>

namespace
{

constexpr int BITS_PER_BYTE = 8;
constexpr int BITS_PER_WORD = 16;

bool writtenByteBit(int type)
{
    return type == INPUT_BIT || type == OUTPUT_BIT || type == MEMORY_BIT;
}

int bitsPerElement(int type)
{
    const RegisterTypeInfo& t = REGISTER_TYPES[type];
    return t.definition == DEF_BIT ? 1 : t.bytesPerElement * BITS_PER_BYTE;
}

} // namespace

int highestAddress(int type)
{
    return AREA_WORDS * BITS_PER_WORD / bitsPerElement(type) - 1;
}

int highestLength(int type, int address)
{
    const int elements = highestAddress(type) + 1 - address;
    return REGISTER_TYPES[type].definition == DEF_DWORD ? elements * WORDS_PER_DWORD : elements;
}

bool parseNumber(const QString& text, int lowest, int highest, int* value)
{
    const bool digits = std::all_of(text.begin(), text.end(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
    bool good = false;
    *value = text.toInt(&good);
    return digits && good && *value >= lowest && *value <= highest;
}

bool parseAddress(int type, const QString& text, int* address)
{
    if (!writtenByteBit(type))
        return parseNumber(text, 0, highestAddress(type), address);
    const QStringList parts = text.split(QLatin1Char('.'));
    int byte = 0, bit = 0;
    if (parts.size() != 2 ||
        !parseNumber(parts[0], 0, highestAddress(type) / BITS_PER_BYTE, &byte) ||
        !parseNumber(parts[1], 0, BITS_PER_BYTE - 1, &bit))
        return false;
    *address = byte * BITS_PER_BYTE + bit;
    return true;
}

QString addressText(int type, int address)
{
    return writtenByteBit(type)
               ? QStringLiteral("%1.%2").arg(address / BITS_PER_BYTE).arg(address % BITS_PER_BYTE)
               : QString::number(address);
}

QString expectedAddress(int type)
{
    const QString range = QStringLiteral("%1 to %2")
                              .arg(addressText(type, 0), addressText(type, highestAddress(type)));
    return writtenByteBit(type) ? QStringLiteral("an address written byte.bit, ") + range
                                : QStringLiteral("a decimal address, ") + range;
}
