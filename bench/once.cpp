// bench_once ROW N  sets the row up and runs it N times; under callgrind, with --instr-atstart=no
// and
//                   --collect-atstart=no, only the N operations are counted.
// bench_once        prints the table: NAME, N, greatest number of instructions, peer, measure of
// the
//                   ratio, greatest ratio, parts of an operation, "threads"; tabs between.
#include "run.h"

#include <cstdio>
#include <cstdlib>

#include <valgrind/callgrind.h>

namespace
{
void printTable()
{
    for (const Row& row : ROWS) {
        std::printf("%s\t%d\t%d\t%s\t%s\t%g\t%d\t%s\n", row.name, countedOperations(row),
                    row.maxInstructions, row.peer.row,
                    row.peer.measure == OF_TIME ? "time" : "instructions", row.peer.atMost,
                    row.parts, row.threads ? "threads" : "");
    }
}

void runCounted(const Row& row, int operations)
{
    begin(row);
    CALLGRIND_START_INSTRUMENTATION;
    for (int i = 0; i < operations; ++i) {
        CALLGRIND_TOGGLE_COLLECT;
        row.work->operation();
        CALLGRIND_TOGGLE_COLLECT;
        if (row.work->restore)
            row.work->restore();
    }
    CALLGRIND_STOP_INSTRUMENTATION;
    end(row, operations);
}
} // namespace

int main(int count, char** arguments)
{
    if (count == 1) {
        printTable();
        return EXIT_SUCCESS;
    }
    const Row* row = findRow(arguments[1]);
    const int operations = count == 3 ? std::atoi(arguments[2]) : 0;
    if (!row || operations < 1) {
        std::fprintf(stderr, "usage: %s [ROW N]; the rows without arguments\n", arguments[0]);
        return EXIT_FAILURE;
    }
    runCounted(*row, operations);
    return EXIT_SUCCESS;
}
