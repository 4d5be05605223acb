/// The order in which a thread takes the locks of the state object, checked in debug builds.
#ifndef KP410_CHECK_LOCK_ORDER_H
#define KP410_CHECK_LOCK_ORDER_H

#include "talmor_kp410_port.h"

#ifndef NDEBUG
enum LockBit : unsigned { LIST_LOCK = 1, STORAGE_LOCK = 2, STATION_LOCK = 4 };

/// One lock, and the bits of those that a thread may hold when it takes it.
struct LockRule {
    const char* name;
    QMutex Communication_Protocol::*mutex;
    unsigned bit;
    unsigned under;
};

inline constexpr LockRule LOCK_RULES[] = {
    {"listMutex", &Communication_Protocol::listMutex, LIST_LOCK, 0},
    {"storageMutex", &Communication_Protocol::storageMutex, STORAGE_LOCK, LIST_LOCK},
    {"stationMutex", &Communication_Protocol::stationMutex, STATION_LOCK, LIST_LOCK},
};

/// The bits of the locks that this thread holds.
inline thread_local unsigned heldLocks = 0;

/// Null for a mutex that is none of the state object's.
inline const LockRule* ruleOf(const QMutex* mutex)
{
    for (const LockRule& rule : LOCK_RULES) {
        if (mutex == &(PLC_driver.*rule.mutex))
            return &rule;
    }
    return nullptr;
}

/// Call it before the lock is taken: a wrong order ends the program here, by name, and not in a
/// deadlock that depends on what the other threads do.
inline void noteTaken(const QMutex* mutex)
{
    const LockRule* taken = ruleOf(mutex);
    if (!taken)
        return;
    for (const LockRule& held : LOCK_RULES) {
        if ((heldLocks & held.bit & ~taken->under) != 0)
            qFatal("lock order: %s taken while %s is held", taken->name, held.name);
    }
    heldLocks |= taken->bit;
}

inline void noteReleased(const QMutex* mutex)
{
    if (const LockRule* released = ruleOf(mutex))
        heldLocks &= ~released->bit;
}
#else
inline void noteTaken(const QMutex* /*mutex*/) {}
inline void noteReleased(const QMutex* /*mutex*/) {}
#endif

#endif
