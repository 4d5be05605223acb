// One request and its reply over the link.
#pragma once

#include "late_replies.h"
#include "link.h"

using Clock = std::function<Micros()>;

struct Request {
    Asked asked;
    int station = 0;
    Micros timeout = 0;
    Hold hold;
    bool echo = false; ///< the line brings back the request before the reply
};

/// Bytes thrown away: before the request, or replies to others.
struct Stray {
    QByteArray bytes;
    Micros at = 0; ///< of the last byte
};

struct Exchanged {
    bool linkLost = false; ///< before a reply was complete
    QByteArray reply;      ///< all that came, however long
    QVector<Stray> strays;
    Micros requestedAt = 0, repliedAt = 0; ///< first bytes
};

Exchanged exchange(Link* link, const Request& request, const Clock& clock);

/// Looks at a link that is not in use, and throws away what came unasked. @return whether it was
/// lost
bool lostMeanwhile(Link* link, Micros now);
