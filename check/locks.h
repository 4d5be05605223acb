/// How the driver takes a lock of its state object.
#ifndef KP410_CHECK_LOCKS_H
#define KP410_CHECK_LOCKS_H

#include "check/lock_order.h"

#if defined(__SANITIZE_THREAD__)
#define KP410_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KP410_THREAD_SANITIZER
#endif
#endif

#ifdef KP410_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>

// QtCore is not instrumented: what its mutex orders must be told.
inline void take(QMutex* mutex)
{
    __tsan_mutex_pre_lock(mutex, 0);
    mutex->lock();
    __tsan_mutex_post_lock(mutex, 0, 0);
}

inline void release(QMutex* mutex)
{
    __tsan_mutex_pre_unlock(mutex, 0);
    mutex->unlock();
    __tsan_mutex_post_unlock(mutex, 0);
}
#else
inline void take(QMutex* mutex)
{
    mutex->lock();
}

inline void release(QMutex* mutex)
{
    mutex->unlock();
}
#endif

/// Holds a lock to the end of a block; null holds none.
class Locker
{
public:
    explicit Locker(QMutex* mutex) : held(mutex)
    {
        if (held) {
            noteTaken(held);
            take(held);
        }
    }
    ~Locker()
    {
        if (held) {
            release(held);
            noteReleased(held);
        }
    }
    Locker(const Locker&) = delete;
    Locker& operator=(const Locker&) = delete;

private:
    QMutex* const held;
};

#endif
