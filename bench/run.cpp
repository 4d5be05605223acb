#include "run.h"

#include "driver.h"

#include <cstdio>
#include <cstdlib>

namespace
{
const char* running = "";

/// List buffers double until an entry that leaves makes room for one that comes.
constexpr int warmUps(const Row& row)
{
    constexpr int enough = 64;
    return row.parts > 1 ? 1 : enough;
}
} // namespace

void expect(const char* what, qint64 actual, qint64 expected)
{
    if (actual == expected)
        return;
    std::fprintf(stderr, "%s: %s: expected %lld, got %lld\n", running, what, expected, actual);
    std::exit(EXIT_FAILURE);
}

void begin(const Row& row)
{
    running = row.name;
    loadDriver();
    row.work->setUp(row.size);
    for (int i = 0; i < warmUps(row); ++i)
        operate(*row.work);
}

void end(const Row& row, qint64 operations)
{
    row.work->check(row.size, operations + warmUps(row));
    expect("fail callbacks", failures, 0);
}
