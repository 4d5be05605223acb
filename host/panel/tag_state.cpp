#include "tag_state.h"

#include <algorithm>

namespace
{

// Indexed by Quality.
constexpr const char* QUALITY_TEXTS[] = {"waiting", "good",      "written", "stale",
                                         "failed",  "no answer", "off"};

} // namespace

TagState initialState(const Tag& tag)
{
    const ImageRange range = rangeOfTag(tag);
    TagState state;
    state.receivedAt.fill(NEVER, range.end - range.first);
    return state;
}

bool markReceived(const Tag& tag, const ImageRange& block, Micros now, TagState* state)
{
    const ImageRange range = rangeOfTag(tag);
    const ImageRange common = commonPart(range, block);
    const Micros before = receivedAt(*state);
    for (int byte = common.first; byte < common.end; ++byte)
        state->receivedAt[byte - range.first] = now;
    const Micros oldest = receivedAt(*state);
    if (common.first >= common.end || oldest == NEVER)
        return false;
    state->reads += oldest > before ? 1 : 0;
    return true;
}

bool markFailed(const Tag& tag, const ImageRange& block, Micros now, TagState* state)
{
    const ImageRange common = commonPart(rangeOfTag(tag), block);
    if (common.first >= common.end)
        return false;
    state->doubtedAt = now;
    state->givenUpAt = now;
    return true;
}

void takeValue(const Tag& tag, const QByteArray& raw, TagState* state)
{
    state->raw = raw;
    state->value = formatValue(tag, raw);
}

Micros receivedAt(const TagState& state)
{
    return *std::min_element(state.receivedAt.begin(), state.receivedAt.end());
}

bool isDoubted(const TagState& state)
{
    return receivedAt(state) < state.doubtedAt;
}

Quality qualityOf(const TagState& state, Presence presence, Micros now, const QualityLimits& limits)
{
    if (presence == Presence::Off)
        return Quality::Off;
    const bool silent = presence == Presence::Silent;
    const Micros received = receivedAt(state);
    if (received <= state.writtenAt && state.writtenAt != NEVER && !silent)
        return Quality::Written;
    if (received == NEVER && silent)
        return Quality::NoAnswer;
    if (received == NEVER)
        return isDoubted(state) ? Quality::Failed : Quality::Waiting;
    const Micros age = now - received;
    if (isDoubted(state) || age > limits.oldestGood || (silent && age > limits.timeout))
        return Quality::Stale;
    return Quality::Good;
}

const char* qualityText(Quality quality)
{
    return QUALITY_TEXTS[static_cast<int>(quality)];
}
