/// Address texts, registration of variables, and the regrouping of the cyclic read list. The
/// exported functions are declared in the installed header.
#ifndef KP410_LISTS_FUNC_INITI_H
#define KP410_LISTS_FUNC_INITI_H

#include "talmor_kp410_port.h"

/// The element address of `text`: "byte.bit" for INPUT_BIT, OUTPUT_BIT and MEMORY_BIT, a plain
/// decimal number for every other type. Parts that are no decimal int count as 0; arithmetic wraps.
/// @return the address; -1 for a bit text without exactly one "."
int StringAddressToInt(int type, QString text);

/// Sorts ascending by `address`; equal addresses keep their order, as in the sort of its name, but
/// in n log n steps.
void Bubble_Sort(QList<RW_VAR>* list);

/// Merges a sorted group of one station and area into blocks, over gaps that end within `maxLength`
/// of a block's start, and appends the blocks, cut to `maxLength`, to `readList`. A `maxLength`
/// below 1 is no limit and bridges no gap. Hold `listMutex`.
void BitVarReCreat(const QList<RW_VAR>* group, int maxLength);

/// Cuts full pieces of `maxLength` off the front of `block` into `readList` and, if `appendRest`,
/// appends what is left of it. Hold `listMutex`.
void addressAdd(RW_VAR& block, int maxLength, bool appendRest);

#endif
