#include "check/Func_Check.h"
#include "lists/grouping.h"

#include <array>
#include <numeric>

namespace
{
constexpr int PLACE_BITS = ADDRESS_BITS + TYPE_BITS + STATION_BITS;
constexpr unsigned DIGITS = 1U << BITS_PER_BYTE;

unsigned digitOf(const GroupedVar& var, int shift)
{
    return static_cast<unsigned>(var.place >> shift) % DIGITS;
}

/// One pass of a radix sort, by one byte of the places. A byte that all have in common, as most
/// bytes are, moves nothing.
void sortByByte(GroupedVars& vars, GroupedVars& spare, int shift)
{
    std::array<std::size_t, DIGITS + 1> starts{}; // of each digit, behind those below it
    for (const GroupedVar& var : vars)
        ++starts[digitOf(var, shift) + 1];
    if (starts[digitOf(vars.front(), shift) + 1] == vars.size())
        return;
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (const GroupedVar& var : vars)
        spare[starts[digitOf(var, shift)]++] = var;
    vars.swap(spare);
}
} // namespace

void Bubble_Sort(GroupedVars* vars)
{
    if (vars->empty())
        return;
    GroupedVars spare(vars->size());
    for (int shift = 0; shift < PLACE_BITS; shift += BITS_PER_BYTE)
        sortByByte(*vars, spare, shift);
}
