#include "tag_state.h"

#include <algorithm>

namespace
{

constexpr Micros OLDEST_GOOD = 5 * MICROS_PER_SECOND; // a value older than this needs a look

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
    for (int byte = common.first; byte < common.end; ++byte)
        state->receivedAt[byte - range.first] = now;
    if (common.first >= common.end || receivedAt(*state) == NEVER)
        return false;
    state->failed = false;
    state->written = false;
    ++state->reads;
    return true;
}

bool markFailed(const Tag& tag, const ImageRange& block, Micros now, TagState* state)
{
    const ImageRange common = commonPart(rangeOfTag(tag), block);
    if (common.first >= common.end)
        return false;
    state->failed = true;
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

Quality qualityOf(const TagState& state, Presence presence, Micros now, Micros timeout)
{
    if (presence == Presence::Off)
        return Quality::Off;
    const bool silent = presence == Presence::Silent;
    if (state.written && !silent)
        return Quality::Written;
    const Micros received = receivedAt(state);
    if (received == NEVER && silent)
        return Quality::NoAnswer;
    if (received == NEVER)
        return state.failed ? Quality::Failed : Quality::Waiting;
    const Micros age = now - received;
    if (state.failed || age > OLDEST_GOOD || (silent && age > timeout))
        return Quality::Stale;
    return Quality::Good;
}

const char* qualityText(Quality quality)
{
    return QUALITY_TEXTS[static_cast<int>(quality)];
}
