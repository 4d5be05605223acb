#include "fault_plan.h"

#include <algorithm>

namespace plc
{
namespace
{
constexpr double GENERATOR_RANGE = 4294967296.0; ///< one more than its highest number
constexpr double PERCENT = 100.0;
} // namespace

FaultPlan makeFaultPlan(const QList<Fault>& faults, quint32 seed)
{
    FaultPlan plan;
    plan.faults = faults;
    plan.seen.resize(faults.size());
    plan.chance.seed(seed);
    plan.noise.seed(seed);
    return plan;
}

bool hits(const Fault& fault, qint64 number, Generator& chance)
{
    switch (fault.when) {
    case WHEN_PERCENT:
        return static_cast<double>(chance()) < fault.percent / PERCENT * GENERATOR_RANGE;
    case WHEN_FROM:
        return number >= fault.numbers.first();
    case WHEN_EVERY:
        return number % fault.numbers.first() == 0;
    default:
        return fault.numbers.contains(number);
    }
}

QList<Fault> takeFaults(FaultPlan& plan, int station)
{
    QList<Fault> taken;
    for (int i = 0; i < plan.faults.size(); ++i) {
        const Fault& fault = plan.faults.at(i);
        if (fault.station != EVERY_STATION && fault.station != station)
            continue;
        if (!hits(fault, ++plan.seen[i], plan.chance))
            continue;
        ++plan.hits.at(static_cast<size_t>(fault.kind));
        taken.append(fault);
    }
    std::stable_sort(taken.begin(), taken.end(),
                     [](const Fault& one, const Fault& other) { return one.kind < other.kind; });
    return taken;
}
} // namespace plc
