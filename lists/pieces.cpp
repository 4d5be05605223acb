#include "lists/pieces.h"

#include "check/arith.h"
#include "check/guarded.h"

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

namespace
{
/// Appends all pieces, or none and leaves `var` as it is.
void appendPieces(int length, int maxLength, RW_VAR& var, QList<RW_VAR>& out)
{
    if (length <= maxLength || maxLength < 1) {
        out.append(var);
        return;
    }
    if (length > MAX_ELEMENTS)
        return;
    const Pieces pieces = cutLength(length, maxLength);
    Appending<RW_VAR> appending(out);
    RW_VAR piece = var;
    for (qint64 i = 0; i < pieces.count; ++i) {
        setPiece(piece, pieces, var.address, i);
        out.append(piece);
    }
    var = piece;
    appending.keep();
}
} // namespace

void WhetherGroup(int length, int maxLength, RW_VAR* var, QList<RW_VAR>* out)
{
    if (!var || !out || length < 0)
        return;
    guarded([=] { appendPieces(length, maxLength, *var, *out); });
}
