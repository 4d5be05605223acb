/// Cutting a length into pieces of at most a block, without state.
#ifndef KP410_LISTS_PIECES_H
#define KP410_LISTS_PIECES_H

#include "talmor_kp410_port.h"

/// `count` pieces, all but the last `size` long; none for a count below 1.
struct Pieces {
    qint64 count;
    int size;
    int last;
};

/// Pieces of at most `limit` that cover `length`. With a `limit` of 0 the whole is one piece; a
/// negative one whose amount does not exceed `length` gives none.
Pieces cutLength(int length, int limit);

/// Makes `var` piece `index` of a run that starts at `start`; addresses wrap as 32-bit ints.
void setPiece(RW_VAR& var, const Pieces& pieces, int start, qint64 index);

#endif
