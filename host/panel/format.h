// The formats in which a tag's values are shown and written, and which of them suit a register
// type.
#pragma once

#include "talmor_kp410_port.h"

#include <QString>
#include <QStringList>

enum class Format { Bool, Int8, Uint8, Int16, Uint16, Int32, Uint32, Float32, Hex };

/// The length of double words is counted in words.
inline constexpr int WORDS_PER_DWORD = 2;

struct FormatInfo {
    const char* name;
    int bytes;      ///< that one value takes; 0: as wide as the element
    qint64 lowest;  ///< of the integer formats; 0 for the others
    qint64 highest; ///< likewise
};

const FormatInfo& formatInfo(Format format);

/// Finds a format by its name, in any case. @return false, and `format` as it was, for other names
bool formatByName(const QString& name, Format* format);

/// The names of all formats, in the order of Format.
QStringList formatNames();

/// The format of a tag that names none.
Format defaultFormat(int type);

/// The length of a tag that names none, in length units of the type: what one value takes.
int defaultLength(int type, Format format);

/// Bytes of one value, 1 to 4; a bit takes one.
int formatWidth(int type, Format format);

/// Bytes that a host read delivers for `length` length units of the type, one for each bit.
int bytesOfLength(int type, int length);

/// Empty when values of this type, length and format can be shown, else what was expected. A length
/// of 2 suits every format that suits the type, and the type's own format suits every right length.
QString formatProblem(int type, int length, Format format);
