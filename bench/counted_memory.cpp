#include "counted_memory.h"

#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
}

namespace
{
thread_local qint64 counted = 0;
}

qint64 allocations()
{
    return counted;
}

extern "C" {
void* malloc(std::size_t size)
{
    ++counted;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size)
{
    ++counted;
    return __libc_calloc(count, size);
}
void* realloc(void* old, std::size_t size)
{
    ++counted;
    return __libc_realloc(old, size);
}
}
