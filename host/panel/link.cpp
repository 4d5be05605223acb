#include "link.h"

#include <algorithm>

namespace
{

constexpr Micros FIRST_BACK_OFF = MICROS_PER_SECOND / 4;
constexpr Micros LONGEST_BACK_OFF = 8 * MICROS_PER_SECOND;

Micros nextBackOff(Micros last)
{
    return std::clamp(2 * last, FIRST_BACK_OFF, LONGEST_BACK_OFF);
}

} // namespace

bool bringUp(Link* link, Micros now)
{
    if (link->device)
        return true;
    if (now < link->retryAt)
        return false;
    QString error;
    link->device = link->open(&error);
    if (!link->device) {
        takeDown(link, error, now);
        return false;
    }
    link->heard = false;
    link->lastByteAt = now;
    ++link->opened;
    return true;
}

void takeDown(Link* link, const QString& why, Micros now)
{
    link->device.reset();
    link->error = why;
    link->failedTries += link->heard ? 0 : 1;
    link->heard = false;
    link->backOff = nextBackOff(link->backOff);
    link->retryAt = now + link->backOff;
}

void noteHeard(Link* link, Micros now)
{
    link->lastByteAt = now;
    link->heard = true;
    link->failedTries = 0;
    link->backOff = 0;
}
