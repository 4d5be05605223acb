#include "lists/pieces.h"

#include "check/arith.h"

Pieces cutLength(int length, int limit)
{
    if (length < 1)
        return {0, limit, 0};
    const qint64 full = limit == 0 ? 0 : qint64{length} / limit;
    const qint64 rest = length - full * limit;
    if (rest != 0)
        return {full + 1, limit, static_cast<int>(rest)};
    return {full, limit, limit};
}

void setPiece(RW_VAR& var, const Pieces& pieces, int start, qint64 index)
{
    var.address = wrapToInt(start + index * pieces.size);
    var.length = index == pieces.count - 1 ? pieces.last : pieces.size;
}
