#include "check/address.h"

#include "check/Func_Check.h"
#include "check/arith.h"

namespace
{
constexpr unsigned BASE = 10;
constexpr int SAFE_DIGITS = 9; ///< any number of so many digits is an int

/// A run of plain digits: the number, 0 for none, and the character behind it.
struct Digits {
    unsigned number;
    const QChar* end;
};

/// Nearly all addresses are a few plain digits; read in place they cost a tenth of what Qt takes,
/// and no memory.
Digits digitsIn(const QChar* at, const QChar* end)
{
    if (end - at > SAFE_DIGITS)
        end = at + SAFE_DIGITS;
    unsigned number = 0;
    for (; at != end; ++at) {
        const unsigned digit = unsigned{at->unicode()} - '0';
        if (digit >= BASE)
            break;
        number = number * BASE + digit;
    }
    return {number, at};
}

int bitAddress(int byte, int bit)
{
    return wrapAdd(wrapMul(byte, BITS_PER_BYTE), bit);
}

/// For all that Qt takes for a number besides. Not inlined: every call would set up the stack for
/// it, a sixth of what GetRegisterData takes.
[[gnu::noinline]] int parsedBitAddress(const QString& text)
{
    const int point = text.indexOf(QLatin1Char('.'));
    if (point < 0 || text.indexOf(QLatin1Char('.'), point + 1) >= 0)
        return -1;
    return bitAddress(text.left(point).toInt(), text.mid(point + 1).toInt());
}
} // namespace

int StringAddressToInt(int type, const QString& text)
{
    const QChar* end = text.constData() + text.size();
    const Digits first = digitsIn(text.constData(), end);
    if (type != INPUT_BIT && type != OUTPUT_BIT && type != MEMORY_BIT)
        return first.end == end ? static_cast<int>(first.number) : text.toInt();
    if (first.end != end && *first.end == QLatin1Char('.')) {
        const Digits second = digitsIn(first.end + 1, end);
        if (second.end == end)
            return bitAddress(static_cast<int>(first.number), static_cast<int>(second.number));
    }
    return parsedBitAddress(text);
}
