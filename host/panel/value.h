// Values as a person reads and writes them, and as the driver exchanges them: little-endian, a byte
// per bit.
#pragma once

#include "format.h"

#include <QByteArray>
#include <QString>
#include <QVector>

struct Tag;

struct ParsedValue {
    QByteArray bytes; ///< in the layout that a host write takes
    QString shown;    ///< as formatValue shows it
    QString error;    ///< "expected WHAT, not 'FOUND'"; empty when the text was good
};

/// Bytes that the elements of a tag occupy, one for each bit.
int valueBytes(const Tag& tag);

/// The bits of each value of a tag, in the low bits of a number; `raw` is what a host read
/// delivered, missing bytes are 0.
QVector<quint32> valueBits(const Tag& tag, const QByteArray& raw);

/// The number that the bits of a value are in an integer format.
qint64 integerOfBits(quint32 bits, Format format);

/// The number that the bits of a value are in format float32.
float floatOfBits(quint32 bits);

/// One value as text; `width` is that of the format.
QString textOfBits(quint32 bits, Format format, int width);

/// The values of a tag, separated by blanks; `raw` is what a host read delivered.
QString formatValue(const Tag& tag, const QByteArray& raw);

/// The reverse; several values are separated by ';', blanks around each do not count.
/// - bool: 0 1 false true off on, in any case
/// - integers: decimal with a sign where the format has one ('+' always), or 0x and hex digits, of
///   the format's range
/// - hex: hex digits with or without 0x, no more than the element holds
/// - float32: a finite decimal number as the C locale writes it
ParsedValue parseValue(const Tag& tag, const QString& text);
