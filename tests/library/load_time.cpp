// How long a runtime, which has Qt, waits until the library is loaded: microseconds of one dlopen.
#include <QString>

#include <chrono>
#include <cstdio>
#include <dlfcn.h>

int main(int argc, char** argv)
{
    typedef std::chrono::steady_clock Clock;
    const QString qt = QString::number(argc);
    const Clock::time_point before = Clock::now();
    void* library = argc == 2 && !qt.isEmpty() ? dlopen(argv[1], RTLD_NOW) : nullptr;
    const auto taken = Clock::now() - before;
    if (!library) {
        std::fprintf(stderr, "%s\n", argc == 2 ? dlerror() : "usage: load_time LIBRARY");
        return 1;
    }
    using std::chrono::microseconds;
    const auto count = std::chrono::duration_cast<microseconds>(taken).count();
    std::printf("%ld\n", static_cast<long>(count));
    return 0;
}
