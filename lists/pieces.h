/// Cutting a length into pieces of at most a block, without state.
#ifndef KP410_LISTS_PIECES_H
#define KP410_LISTS_PIECES_H

#include <QtGlobal>

/// `count` pieces, all but the last `size` long; none for a count below 1.
struct Pieces {
    qint64 count;
    int size;
    int last;
};

struct Piece {
    int address;
    int length;
};

/// Pieces of at most `limit` that cover `length`. With a `limit` of 0 the whole is one piece; a
/// negative one whose amount does not exceed `length` gives none.
Pieces cutLength(int length, int limit);

/// Piece `index` of a run that starts at `start`; addresses wrap as 32-bit ints.
Piece pieceOf(const Pieces& pieces, int start, qint64 index);

#endif
