#include "support/failing_memory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// What a sanitizer puts in the place of the C library's functions, so that it sees all of them.
#define REAL(name) __interceptor_##name
#else
#define REAL(name) __libc_##name
#endif

extern "C" {
void* REAL(malloc)(std::size_t size);
void* REAL(calloc)(std::size_t count, std::size_t size);
void* REAL(realloc)(void* old, std::size_t size);
}

namespace
{
thread_local int untilFailure = 0; // 0: none will fail
thread_local bool onlyOne = false;
thread_local int failures = 0;

bool fails()
{
    if (untilFailure == 0)
        return false;
    if (untilFailure > 1) {
        --untilFailure;
        return false;
    }
    ++failures;
    if (onlyOne)
        untilFailure = 0;
    return true;
}

void* allocate(std::size_t size)
{
    void* memory = std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}
} // namespace

void failMemory(FailingMemory how, int nth)
{
    onlyOne = how == ONE_FAILS;
    failures = 0;
    untilFailure = nth;
}

int restoreMemory()
{
    untilFailure = 0;
    return failures;
}

extern "C" {
void* malloc(std::size_t size)
{
    return fails() ? nullptr : REAL(malloc)(size);
}
void* calloc(std::size_t count, std::size_t size)
{
    return fails() ? nullptr : REAL(calloc)(count, size);
}
void* realloc(void* old, std::size_t size)
{
    return fails() ? nullptr : REAL(realloc)(old, size);
}
}

// A sanitizer's own forms of these would not pass through malloc; the others, of arrays, call these
// or are its own in pairs.
// clang-format off
void* operator new(std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
// clang-format on

// A QMap that is parted from a copy of it loses the new half when memory fails: Qt's own leak, told
// by the whole stack, which only the slow unwinder finds through QtCore. The memory of thread_local
// variables, which the loader of i386 asks for, is in use where the sanitizer does not look.
extern "C" {
const char* __asan_default_options();
const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}
const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions()
{
    return "leak:QMap<*>::detach\nleak:ld-linux.so.2\n";
}
}
