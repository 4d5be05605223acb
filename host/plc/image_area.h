// The areas as memory images name them.
#ifndef PLC_IMAGE_AREA_H
#define PLC_IMAGE_AREA_H

#include "memory.h"

#include <talmor_kp410_port.h>

#include <array>

namespace plc
{
struct ImageArea {
    int area;
    const char* name;
    int size;
    int highest; ///< value of an element
    int perRow;  ///< elements of a saved line, which begins at a multiple of it
};

inline constexpr int BITS_PER_ROW = 16;
inline constexpr int WORDS_PER_ROW = 10;

/// In the order in which an image is saved.
inline constexpr std::array IMAGE_AREAS = {
    ImageArea{AREA_INPUT, "input", INPUT_BITS, 1, BITS_PER_ROW},
    ImageArea{AREA_OUTPUT, "output", OUTPUT_BITS, 1, BITS_PER_ROW},
    ImageArea{AREA_MEMORY, "memory", MEMORY_WORDS, 0xFFFF, WORDS_PER_ROW},
    ImageArea{AREA_SPECIAL_BIT, "special-bit", SPECIAL_BITS, 1, BITS_PER_ROW},
    ImageArea{AREA_SPECIAL_WORD, "special-word", SPECIAL_WORDS, 0xFFFF, WORDS_PER_ROW},
};
} // namespace plc

#endif
