// One request and its reply over the link.
#pragma once

#include "late_replies.h"
#include "link.h"

using Clock = std::function<Micros()>;

struct Request {
    Asked asked;
    int station = 0;
    Micros timeout = 0;
    Micros hold = 0;   ///< listen this long first, see lateReplyHold
    bool echo = false; ///< the line brings back the request before the reply
};

struct Exchanged {
    bool linkLost = false; ///< before a reply was complete
    QByteArray reply;      ///< all that came, however long
    int discarded = 0;     ///< bytes thrown away: before the request, and replies to others
    Micros requestedAt = 0, repliedAt = 0; ///< first bytes
};

Exchanged exchange(Link* link, const Request& request, const Clock& clock);
