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

Piece pieceOf(const Pieces& pieces, int start, qint64 index)
{
    const int length = index == pieces.count - 1 ? pieces.last : pieces.size;
    return {wrapToInt(start + index * pieces.size), length};
}
