#include "lists/grouping.h"

#include "check/arith.h"

#include <algorithm>

namespace
{
qint64 endOf(const RW_VAR& block)
{
    return qint64{block.address} + block.length;
}

bool reaches(const RW_VAR& block, const GroupedVar& next, int maxLength)
{
    const int address = addressOf(next);
    const bool adjoins = address <= endOf(block);
    const bool bridged = maxLength >= 1 && address <= qint64{block.address} + maxLength;
    return block.length != 0 && (adjoins || bridged);
}
} // namespace

void addressAdd(RW_VAR& block, int maxLength, bool appendRest)
{
    QList<RW_VAR>& out = PLC_driver.readList;
    while (maxLength >= 1 && block.length >= maxLength) {
        out.append(block);
        out.last().length = maxLength;
        block.address += maxLength;
        block.length -= maxLength;
    }
    if (appendRest && block.length > 0)
        out.append(block);
}

void BitVarReCreat(const VarSource& source, const GroupedVar* group, const GroupedVar* end,
                   int maxLength)
{
    RW_VAR block = recordOf(source, *group);
    addressAdd(block, maxLength, false);
    for (const GroupedVar* next = group + 1; next != end; ++next) {
        if (reaches(block, *next, maxLength)) {
            const qint64 last = std::max(endOf(block), qint64{addressOf(*next)} + next->length);
            block.length = clampToCount(last - block.address);
        } else {
            addressAdd(block, maxLength, true);
            block = recordOf(source, *next);
        }
    }
    addressAdd(block, maxLength, true);
}
