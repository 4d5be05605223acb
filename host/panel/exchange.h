// One request and its reply over the link.
#pragma once

#include "link.h"

#include <QByteArray>

using Clock = std::function<Micros()>;

struct Request {
    QByteArray frame;
    int replyLength = 0; ///< ReplyLength or the bytes expected
    Micros timeout = 0;
    Micros hold = 0; ///< listen this long first, see lateReplyHold
};

struct Exchanged {
    bool linkLost = false;
    QByteArray reply;  ///< all that came, however long
    int discarded = 0; ///< stale bytes thrown away before the request
    Micros requestedAt = 0;
};

Exchanged exchange(Link* link, const Request& request, const Clock& clock);
