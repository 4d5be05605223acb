#include "goal.h"

#include <algorithm>

namespace
{

constexpr int LINK_TRIES = 3; // of a command that is to end by itself

bool isDead(const Panel& panel, int station)
{
    const StationMode mode = panel.stations.value(station).mode;
    return mode == StationMode::Dead || mode == StationMode::Probing;
}

/// No more will be learned about the tag than it was known at `since`.
bool tagSettled(const Panel& panel, int tag, Micros since)
{
    const TagState& state = panel.states[tag];
    return receivedAt(state) > since || state.givenUpAt > since ||
           isDead(panel, panel.tags[tag].station);
}

bool writeSettled(const Panel& panel, const Write& write)
{
    switch (write.state) {
    case WriteState::Waiting:
        return isDead(panel, panel.tags[write.tag].station);
    case WriteState::Queued:
        return false;
    case WriteState::Done:
        return write.readBack != ReadBack::Open || tagSettled(panel, write.tag, write.finishedAt);
    default:
        return true;
    }
}

bool allWritesSettled(const Panel& panel)
{
    return std::all_of(panel.writes.begin(), panel.writes.end(),
                       [&panel](const Write& write) { return writeSettled(panel, write); });
}

bool allTagsSettled(const Panel& panel)
{
    for (int tag = 0; tag < panel.tags.size(); ++tag)
        if (!tagSettled(panel, tag, NEVER))
            return false;
    return true;
}

/// @param once having been read is enough, however long ago
bool allTagsGood(const Panel& panel, bool once, Micros now)
{
    for (int tag = 0; tag < panel.tags.size(); ++tag) {
        const TagState& state = panel.states[tag];
        const bool read = receivedAt(state) != NEVER && !isDoubted(state);
        if (once ? !read : qualityAt(panel, tag, now) != Quality::Good)
            return false;
    }
    return true;
}

} // namespace

bool goalReached(const Panel& panel, const Goal& goal, Micros now)
{
    if (goal.duration > 0 && now >= goal.duration)
        return true;
    if (!goal.once && !goal.written)
        return false;
    if (!panel.link.device && panel.link.failedTries >= LINK_TRIES)
        return true;
    return allWritesSettled(panel) && (!goal.once || allTagsSettled(panel));
}

ExitStatus exitStatus(const Panel& panel, const Goal& goal, Micros now)
{
    if (!panel.link.device)
        return EXIT_LINK_DOWN;
    if (!writesGood(panel.writes))
        return EXIT_WRITE_FAILED;
    const bool tagsMatter = goal.once || !goal.written;
    return tagsMatter && !allTagsGood(panel, goal.once, now) ? EXIT_NOT_FRESH : EXIT_WELL;
}
