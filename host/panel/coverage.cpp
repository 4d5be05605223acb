#include "coverage.h"

#include <algorithm>

namespace
{

constexpr int BITS_PER_BYTE = 8;

} // namespace

ImageRange rangeOfTag(const Tag& tag)
{
    const RegisterTypeInfo& type = REGISTER_TYPES[tag.type];
    if (type.definition == DEF_BIT)
        return {tag.station, type.area, tag.address / BITS_PER_BYTE,
                (tag.address + tag.length + BITS_PER_BYTE - 1) / BITS_PER_BYTE};
    const int first = tag.address * type.bytesPerElement;
    return {tag.station, type.area, first, first + valueBytes(tag)};
}

ImageRange rangeOfBlock(const RW_VAR& block)
{
    if (block.regType < 0 || block.regType >= REGISTER_TYPE_COUNT)
        return {};
    const int unit = REGISTER_TYPES[block.regType].bytesPerElement;
    return {block.station, block.regType, block.address * unit,
            (block.address + block.length) * unit};
}

ImageRange commonPart(const ImageRange& tag, const ImageRange& block)
{
    if (tag.station != block.station || tag.area != block.area)
        return {tag.station, tag.area, 0, 0};
    return {tag.station, tag.area, std::max(tag.first, block.first), std::min(tag.end, block.end)};
}
