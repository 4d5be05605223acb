// Which faults hit which request.
#ifndef PLC_FAULT_PLAN_H
#define PLC_FAULT_PLAN_H

#include "fault.h"

#include <QVector>

#include <array>
#include <random>

namespace plc
{
/// Its numbers are laid down by the standard, so a seed means the same everywhere.
using Generator = std::mt19937;

/// The faults asked for, and how far each has come.
struct FaultPlan {
    QList<Fault> faults = {};
    QVector<qint64> seen = {}; ///< for each fault the requests for its stations so far
    std::array<qint64, FAULT_KINDS.size()> hits = {}; ///< by FaultKind
    Generator chance = {};
    Generator noise = {}; ///< apart, so that random bytes do not move the chances
};

FaultPlan makeFaultPlan(const QList<Fault>& faults, quint32 seed);

/// @param number of the request, the first is 1
/// @param chance moves on by one number, of WHEN_PERCENT alone
bool hits(const Fault& fault, qint64 number, Generator& chance);
/// Takes note of one request for `station`. @return the faults that hit it, in the order in which
/// they take effect; of one kind in the order of the plan
QList<Fault> takeFaults(FaultPlan& plan, int station);
} // namespace plc

#endif
