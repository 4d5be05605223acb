// Faults as they are written on the command line: KIND[:PARAMETER]@WHEN[=STATION].
#ifndef PLC_FAULT_TEXT_H
#define PLC_FAULT_TEXT_H

#include "fault.h"

#include <QString>

namespace plc
{
/// Either a fault or, in `expected`, what should have stood where the text goes wrong.
struct ParsedFault {
    Fault fault = {};
    QString expected = {};
};

/// WHEN is 5% (by chance), 7 or 7,9 (these requests), 7+ (from that one on) or /7 (every 7th).
ParsedFault parseFault(const QString& text);
/// The names of all kinds, in the order of FaultKind.
QString faultNames();
} // namespace plc

#endif
