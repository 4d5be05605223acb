// Prints the allocations of an operation of every row: NAME, tab, COUNT. Checks every row.
#include "counted_memory.h"
#include "run.h"

#include <cstdio>

int main()
{
    for (const Row& row : ROWS) {
        begin(row);
        const int operations = countedOperations(row);
        qint64 counted = 0;
        for (int i = 0; i < operations; ++i) {
            const qint64 before = allocations();
            row.work->operation();
            counted += allocations() - before;
            if (row.work->restore)
                row.work->restore();
        }
        end(row, operations);
        std::printf("%s\t%.2f\n", row.name, static_cast<double>(counted) / operations);
    }
    return 0;
}
