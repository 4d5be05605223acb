/// Allocations of a program that links counted_memory.cpp, those of Qt and of the driver among
/// them.
#ifndef KP410_BENCH_COUNTED_MEMORY_H
#define KP410_BENCH_COUNTED_MEMORY_H

#include <QtGlobal>

/// Calls of malloc, calloc and realloc that this thread has made; `new` is made of them.
qint64 allocations();

#endif
