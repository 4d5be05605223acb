// Which bytes of an area's image a tag and a block of the read list occupy.
#pragma once

#include "tag.h"

struct ImageRange {
    int station = 0;
    int area = 0; ///< AreaCode
    int first = 0;
    int end = 0; ///< one past the last byte
};

ImageRange rangeOfTag(const Tag& tag);

/// @param block a read in native units, as the driver's record of a finished cyclic read names it
ImageRange rangeOfBlock(const RW_VAR& block);

/// The bytes of `tag` that `block` covers too; first >= end when there are none.
ImageRange commonPart(const ImageRange& tag, const ImageRange& block);
