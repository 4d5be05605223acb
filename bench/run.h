/// How every program of the bench runs a row.
#ifndef KP410_BENCH_RUN_H
#define KP410_BENCH_RUN_H

#include "rows.h"

/// Loads the driver, sets the row up and runs it until its buffers have grown.
void begin(const Row& row);

/// One operation and what it needs to be run again.
inline void operate(const Work& work)
{
    work.operation();
    if (work.restore)
        work.restore();
}

/// Checks the row after `operations` since `begin`. Ends the program when they did not do their
/// work.
void end(const Row& row, qint64 operations);

/// Operations that are enough where each is counted and not timed.
constexpr int countedOperations(const Row& row)
{
    constexpr int parts = 2000;
    constexpr int atLeast = 3;
    return row.parts > parts / atLeast ? atLeast : parts / row.parts;
}

#endif
