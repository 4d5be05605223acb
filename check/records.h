/// Comparisons of variable records, and how a write enters the pending ones.
#ifndef KP410_CHECK_RECORDS_H
#define KP410_CHECK_RECORDS_H

#include "talmor_kp410_port.h"

/// The same request of the runtime: entries that it is told about together.
inline bool sameKeys(const RW_VAR& a, const RW_VAR& b)
{
    return a.hostKey == b.hostKey && a.hostSubKey == b.hostSubKey;
}

/// The same place of the controller.
inline bool sameTarget(const RW_VAR& a, const RW_VAR& b)
{
    return a.station == b.station && a.regType == b.regType && a.address == b.address &&
           a.length == b.length;
}

/// Index of a pending write that `var` replaces, or -1. The head is left alone: it is the one that
/// may be on the wire.
inline int findReplaceable(const QList<RW_VAR>& writes, const RW_VAR& var)
{
    for (int i = 1; i < writes.size(); ++i) {
        if (sameTarget(writes.at(i), var))
            return i;
    }
    return -1;
}

/// Puts `var` in the place of the pending write that it replaces, else at the end of a list that is
/// not full. Changes nothing when memory fails.
inline void putWrite(QList<RW_VAR>& writes, const RW_VAR& var)
{
    const int replaceable = findReplaceable(writes, var);
    if (replaceable >= 0)
        writes[replaceable] = var;
    else if (writes.size() < LIST_LIMIT)
        writes.append(var);
}

#endif
