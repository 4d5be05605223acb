// Short forms, which name a register type and an address in one word: MW100 is MEMORY_WORD 100.
//
// The number is the element address of the type, so that MD20 is the double word number 20, which
// lies in the words 40 and 41, and MW100 lies in the bytes 200 and 201.
#pragma once

#include "tag.h"

/// Indexed by RegisterType.
// clang-format off
inline constexpr const char* SHORT_PREFIXES[REGISTER_TYPE_COUNT] = {
    "I",  "Q",  "M",  // bits, "byte.bit"
    "IB", "QB", "MB", // bytes
    "IW", "QW", "MW", // words
    "ID", "QD", "MD", // double words
    "SM", "SW",       // special bits and words, plain decimal
};
// clang-format on

/// What a short form names; -1 for what is not known.
struct Place {
    int type = -1;    ///< RegisterType
    int address = -1; ///< in elements of the type
};

/// Reads a short form, in any case. A prefix that is in the table gives a type even where the
/// number behind it is wrong. @return empty, or what was expected
QString parseShortForm(const QString& text, Place* place);

/// The short form of a tag's first element, in capitals.
QString shortForm(const Tag& tag);
