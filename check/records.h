/// Comparisons of variable records.
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

#endif
