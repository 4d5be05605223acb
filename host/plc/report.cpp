#include "report.h"

#include <QStringList>

#include <algorithm>
#include <cstdio>

namespace plc
{
namespace
{
QString faultSummary(const FaultPlan& plan)
{
    QStringList counted;
    for (const FaultKindInfo& info : FAULT_KINDS) {
        const bool planned =
            std::any_of(plan.faults.begin(), plan.faults.end(),
                        [&info](const Fault& fault) { return fault.kind == info.kind; });
        if (planned)
            counted << QStringLiteral("%1 %2")
                           .arg(QLatin1String(info.name))
                           .arg(plan.hits.at(static_cast<size_t>(info.kind)));
    }
    return counted.isEmpty() ? QString()
                             : QStringLiteral("; faults: ") + counted.join(QStringLiteral(", "));
}
} // namespace

void report(const QString& message)
{
    std::fprintf(stderr, "kp410-plc: %s\n", qUtf8Printable(message));
}

QString summary(const Controller& controller)
{
    const Counters& counters = controller.counters;
    return QStringLiteral("%1 requests, %2 replies, %3 exceptions, %4 swallowed")
               .arg(counters.requests)
               .arg(counters.replies)
               .arg(counters.exceptions)
               .arg(counters.swallowed) +
           faultSummary(controller.faults);
}
} // namespace plc
