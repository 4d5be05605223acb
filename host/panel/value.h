// Values as a person reads and writes them, and as the driver exchanges them: little-endian, a byte
// per bit.
#pragma once

#include "talmor_kp410_port.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

enum class Format { Bool, Int8, Uint8, Int16, Uint16, Int32, Uint32, Float32, Hex };

struct Tag;

struct ParsedValue {
    QByteArray bytes; ///< in the layout that a host write takes
    QString shown;    ///< as formatValue shows it
    QString error;    ///< empty when the text was good
};

bool formatByName(const QString& name, Format* format);
QStringList formatNames();
Format defaultFormat(int type);

/// Empty when values of this type, length and format can be shown, else what was expected.
QString formatProblem(int type, int length, Format format);

/// Bytes that the elements of a tag occupy, one for each bit.
int valueBytes(const Tag& tag);

/// The values of a tag, separated by blanks; `raw` is what a host read delivered.
QString formatValue(const Tag& tag, const QByteArray& raw);

/// The reverse; several values are separated by ';'.
ParsedValue parseValue(const Tag& tag, const QString& text);
