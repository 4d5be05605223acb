#include "late_replies.h"

#include <algorithm>

namespace
{

constexpr int EXPECTED_TIMEOUTS = 3;
constexpr Micros LATEST_EXPECTED = 10 * MICROS_PER_SECOND; // longer holds would stop the line

int stationKey(const Asked& asked)
{
    return asked.frame.isEmpty() ? 0 : asked.frame.at(0);
}

Micros expiryAfter(const LateReplies& late, const Asked& asked, Micros timeout)
{
    const Micros seen = late.longest.value(stationKey(asked));
    return std::max(EXPECTED_TIMEOUTS * timeout, std::min(seen + seen / 2, LATEST_EXPECTED));
}

} // namespace

void noteOutcome(LateReplies* late, const Asked& asked, bool answered, Micros askedAt,
                 Micros timeout)
{
    QVector<Unanswered>& requests = late->requests;
    const auto expired = [askedAt](const Unanswered& u) { return u.expires <= askedAt; };
    requests.erase(std::remove_if(requests.begin(), requests.end(), expired), requests.end());
    for (Unanswered& u : requests) {
        if (isWrite(asked) && u.asked.frame != asked.frame &&
            stationAsked(u.asked) == stationAsked(asked))
            u.outdated = true;
    }
    const auto sameFrame = [&asked](const Unanswered& u) { return u.asked.frame == asked.frame; };
    const auto earlierTry = std::find_if(requests.begin(), requests.end(), sameFrame);
    if (answered && earlierTry == requests.end())
        return;
    if (answered)
        requests.erase(earlierTry);
    requests << Unanswered{asked, askedAt, askedAt + expiryAfter(*late, asked, timeout)};
}

Hold holdBefore(const LateReplies& late, const Asked& next, Micros now)
{
    Hold hold;
    for (const Unanswered& unanswered : late.requests) {
        const bool repeated = unanswered.asked.frame == next.frame && !unanswered.outdated;
        if (repeated || unanswered.expires <= now || !answersLookAlike(unanswered.asked, next))
            continue;
        hold.time = std::max(hold.time, unanswered.expires - now);
        ++hold.expected;
    }
    return hold;
}

Micros noteStray(LateReplies* late, const QByteArray& bytes, Micros at)
{
    QVector<Unanswered>& requests = late->requests;
    const auto answered = [&bytes](const Unanswered& u) {
        return isFromStation(u.asked, bytes) && !isForeign(u.asked, bytes);
    };
    const auto found = std::find_if(requests.begin(), requests.end(), answered);
    if (found == requests.end())
        return NEVER;
    const Micros lateness = at - found->askedAt;
    Micros& longest = late->longest[stationKey(found->asked)];
    longest = std::max(longest, lateness);
    requests.erase(found);
    return lateness;
}
