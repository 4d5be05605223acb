/// The cyclic variables on their way into blocks, as small as sorting thousands of them asks for:
/// a record with its texts is built only for what opens a block.
#ifndef KP410_LISTS_GROUPING_H
#define KP410_LISTS_GROUPING_H

#include "talmor_kp410_port.h"

#include <vector>

/// A variable in native units. Sorted by `place`, whose bytes are station, native type and address.
struct GroupedVar {
    quint64 place;
    int length;
    int desc; ///< index of its description
};

inline constexpr int ADDRESS_BITS = 32;
inline constexpr int TYPE_BITS = 8;
inline constexpr int STATION_BITS = 8;

typedef std::vector<GroupedVar> GroupedVars;

/// Station and native type.
constexpr quint64 groupOf(const GroupedVar& var)
{
    return var.place >> ADDRESS_BITS;
}

constexpr int addressOf(const GroupedVar& var)
{
    return static_cast<int>(var.place & 0x7FFFFFFF);
}

/// What a variable's record is made of.
struct VarSource {
    const QList<VAR_DESC>& descs;
    const ComInfo& settings;
};

/// The record that a block takes its fields from, in native units.
RW_VAR recordOf(const VarSource& source, const GroupedVar& var);

/// Sorts ascending by `place`; equal places keep their order, as in the sort of its name, but what
/// it takes for a variable does not rise with their number.
void Bubble_Sort(GroupedVars* vars);

/// Merges a sorted group, `[group, end)`, of one station and native type into blocks, over gaps
/// that end within `maxLength` of a block's start, and appends the blocks, cut to `maxLength`, to
/// `readList`. A `maxLength` below 1 is no limit and bridges no gap. Hold `listMutex`.
void BitVarReCreat(const VarSource& source, const GroupedVar* group, const GroupedVar* end,
                   int maxLength);

/// Cuts full pieces of `maxLength` off the front of `block` into `readList` and, if `appendRest`,
/// appends what is left of it. Hold `listMutex`.
void addressAdd(RW_VAR& block, int maxLength, bool appendRest);

#endif
