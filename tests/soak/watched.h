/// The driver as the panel calls it, with a look at it around every call.
#pragma once

#include "driver_api.h"
#include "support/invariants.h"

#include <algorithm>
#include <memory>

/// Requests for which an entry may be the head of its list while its station is on: five writes of
/// two frames go before a cyclic read, and each frame has three tries.
inline constexpr int LONGEST_HEAD = 5 * 2 * 3 + 3;

// The driver's functions carry no pointer of the caller's, so these have one place in the program.
inline DriverApi loaded;
inline std::unique_ptr<Watch> watch;
inline QString fault; ///< the first thing that did not hold

inline void blame(const QString& wrong)
{
    if (fault.isEmpty())
        fault = wrong;
}

/// What the driver's call changes in the store. While replies fail, a write changes it at once;
/// then it is known no closer than by its area.
inline Target targetOf(CallKind kind)
{
    const RW_VAR last = loaded.state->writeList.value(loaded.state->writeList.size() - 1);
    if (kind == CALL_ADDS && loaded.state->lastFailed)
        return {last.station, areaOf(last.regType), 0, 8 * MAX_IMAGE_BYTES};
    return kind == CALL_TURNS     ? watch->targetOfTurn()
           : kind == CALL_ANSWERS ? watch->targetOfReply()
                                  : Target();
}

inline bool isOn(const RW_VAR& var)
{
    return !loaded.state->stationMap.contains(var.station);
}

/// Looks at a list at each request.
struct HeadWatch {
    const QList<RW_VAR>& list;
    int head = 0, age = 0;

    void look()
    {
        const RW_VAR var = list.value(0);
        const int before = head;
        head = (var.station << 4 | var.regType) << 20 | var.address;
        age = head == before && !list.isEmpty() && isOn(var) ? age + 1 : 0;
        if (age > LONGEST_HEAD)
            blame(QStringLiteral("the head of a list is stuck"));
    }
};

/// Calls a function of `loaded`.
template <auto function, CallKind kind, typename Result, typename... Arguments>
Result watched(Arguments... arguments)
{
    static HeadWatch heads[] = {{loaded.state->readList}, {loaded.state->writeList}};
    for (HeadWatch& head : heads)
        if (kind == CALL_ANSWERS)
            head.look();
    watch->begin(kind);
    const Target before = targetOf(kind);
    const Result result = (loaded.*function)(arguments...);
    blame(watch->end(kind == CALL_ADDS ? targetOf(kind) : before));
    const QList<RW_VAR>& reads = loaded.state->readList;
    if (kind == CALL_TURNS && !result && std::any_of(reads.begin(), reads.end(), isOn))
        blame(QStringLiteral("nothing is sent, though a station is on"));
    return result;
}

template <auto first, auto second, typename... Arguments>
void both(Arguments... arguments)
{
    first(arguments...);
    second(arguments...);
}
