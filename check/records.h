/// Comparisons of variable records.
#ifndef KP410_CHECK_RECORDS_H
#define KP410_CHECK_RECORDS_H

#include "talmor_kp410_port.h"

#include <algorithm>

/// The same request of the runtime: entries that it is told about together.
inline bool sameKeys(const RW_VAR& a, const RW_VAR& b)
{
    return a.hostKey == b.hostKey && a.hostSubKey == b.hostSubKey;
}

/// The same place of the controller. The address, which most often differs, comes first.
inline bool sameTarget(const RW_VAR& a, const RW_VAR& b)
{
    return a.address == b.address && a.station == b.station && a.regType == b.regType &&
           a.length == b.length;
}

/// Index of the first entry behind the head that `matches`, or -1. By std::find_if, which takes
/// half the steps of a loop over the indices.
template <typename Matches>
int findBehindHead(const QList<RW_VAR>& list, Matches matches)
{
    if (list.isEmpty())
        return -1;
    const auto found = std::find_if(list.constBegin() + 1, list.constEnd(), matches);
    return found == list.constEnd() ? -1 : static_cast<int>(found - list.constBegin());
}

#endif
