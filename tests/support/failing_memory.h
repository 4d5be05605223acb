/// Allocations that fail on request. A test that links failing_memory.cpp has every malloc, calloc,
/// realloc and new of its process pass there, those of Qt and of the driver among them.
#ifndef KP410_TESTS_FAILING_MEMORY_H
#define KP410_TESTS_FAILING_MEMORY_H

enum FailingMemory { ONE_FAILS, ALL_FAIL };

/// From now on the `nth` (1 the next) allocation of this thread fails, alone or with all after it.
void failMemory(FailingMemory how, int nth);

/// Ends it. @return allocations that have failed since `failMemory`
int restoreMemory();

#endif
