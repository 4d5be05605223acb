// What the program says on standard error.
#ifndef PLC_REPORT_H
#define PLC_REPORT_H

#include "controller.h"

#include <QString>

namespace plc
{
/// One line, the program's name before it.
void report(const QString& message);
/// What has been counted; with faults planned also how many requests each of their kinds has hit.
QString summary(const Controller& controller);
} // namespace plc

#endif
