// The rows under Google Benchmark, with its own options (--help).
#include "run.h"

#include <benchmark/benchmark.h>

namespace
{
void timeRow(benchmark::State& state, const Row& row)
{
    begin(row);
    const Work& work = *row.work;
    while (state.KeepRunning())
        operate(work);
    end(row, static_cast<qint64>(state.iterations()));
}
} // namespace

int main(int count, char** arguments)
{
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments))
        return 1;
    for (const Row& row : ROWS) {
        benchmark::RegisterBenchmark(row.name,
                                     [&row](benchmark::State& state) { timeRow(state, row); });
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
