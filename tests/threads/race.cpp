// An entry point in one thread, and in another a look past it at what its lock guards.
// ThreadSanitizer must report that when it is done without the lock, and must not when it is done
// with it.
#include "check/locks.h"
#include "support/driver.h"
#include "threads/crew.h"

#include <cstring>

namespace
{
constexpr int CALLS = 20000;
QMutex* lock = nullptr; ///< null: the race

void queueWrite(int n)
{
    QByteArray value(2, '\1');
    write(MEMORY_WORD, "5", value, 1, n);
}

void touchStore(int n)
{
    const Locker locker(lock);
    DataStorage[1][AREA_MEMORY].data()[0] = static_cast<char>(n);
}

void touchWrites(int n)
{
    const Locker locker(lock);
    PLC_driver.writeList[1].nodeId = n;
}

void readStore(int /*n*/)
{
    QByteArray out;
    read(MEMORY_WORD, "0", 10, out);
}

const struct {
    const char* name;
    Job called, touching;
    QMutex* lock;
} races[] = {{"store", readStore, touchStore, &PLC_driver.storageMutex},
             {"writes", queueWrite, touchWrites, &PLC_driver.listMutex}};
} // namespace

int main(int argc, char** argv)
{
    for (const auto& race : races) {
        if (argc != 3 || std::strcmp(race.name, argv[1]) != 0)
            continue;
        resetDriver();
        for (int n = 0; n < 2; ++n) {
            race.called(n);
            queueWrite(n);
        }
        lock = std::strcmp(argv[2], "locked") == 0 ? race.lock : nullptr;
        Crew crew;
        crew.start(race.called, CALLS);
        crew.start(race.touching, CALLS);
        return 0;
    }
    return 2;
}
