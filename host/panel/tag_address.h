// Addresses as text: "byte.bit" for bits of the input, output and memory area, plain decimal for
// all else, in elements of the register type.
#pragma once

#include "talmor_kp410_port.h"

#include <QString>

/// Words that an area can have, whatever its unit.
constexpr int AREA_WORDS = 65536;

/// The last element of a type's area.
int highestAddress(int type);

/// The longest length from `address` to the end of the area, in length units of the type.
int highestLength(int type, int address);

/// A decimal number of digits alone. @return whether `text` is one from `lowest` to `highest`
bool parseNumber(const QString& text, int lowest, int highest, int* value);

/// @return whether `text` is an address of the type; `address` is then in elements
bool parseAddress(int type, const QString& text, int* address);

/// The reverse of parseAddress.
QString addressText(int type, int address);

/// What an address of the type looks like, for a complaint.
QString expectedAddress(int type);
