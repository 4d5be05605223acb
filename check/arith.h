/// Integer arithmetic that is safe for any int the runtime hands in.
#ifndef KP410_CHECK_ARITH_H
#define KP410_CHECK_ARITH_H

#include <QtGlobal>

#include <limits>

/// The low 32 bits of `value` as a signed int.
constexpr int wrapToInt(qint64 value)
{
    return static_cast<int>(static_cast<quint32>(value));
}

constexpr int wrapAdd(int a, int b)
{
    return wrapToInt(qint64{a} + b);
}

constexpr int wrapMul(int a, int b)
{
    return wrapToInt(qint64{a} * b);
}

/// The nearest int that is not negative.
constexpr int clampToCount(qint64 value)
{
    constexpr int largest = std::numeric_limits<int>::max();
    return value < 0 ? 0 : value > largest ? largest : static_cast<int>(value);
}

/// The byte at bits `shift` to `shift` + 7 of `value`.
constexpr unsigned char byteAt(int value, int shift)
{
    return static_cast<unsigned char>(static_cast<quint32>(value) >> shift);
}

#endif
