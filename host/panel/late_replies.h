// Answers that may still come to requests given up. By its looks such an answer could be the next
// request's, so it is kept away from it here.
#pragma once

#include "reply_match.h"
#include "timing.h"

#include <QMap>
#include <QVector>

struct Unanswered {
    Asked asked;
    Micros askedAt = 0;
    Micros expires = 0;    ///< an answer later than this is not expected
    bool outdated = false; ///< the station has been written to since
};

struct LateReplies {
    QVector<Unanswered> requests;
    QMap<int, Micros> longest; ///< the latest answers seen so far, by the first byte of requests
};

/// What to do before a request is sent.
struct Hold {
    Micros time = 0;  ///< listen this long, and throw away
    int expected = 0; ///< answers that may come meanwhile
};

/// Notes how a request sent at `askedAt` ended. After a request was repeated, the answer may be
/// that to an earlier try; then the later one's is still to come.
void noteOutcome(LateReplies* late, const Asked& asked, bool answered, Micros askedAt,
                 Micros timeout);

/// A repeated frame needs no care, since either answer is right for it, unless the station has been
/// written to meanwhile: a word read before that, put back with a bit of it changed, would undo the
/// write. Nor does a frame whose answer will look different.
Hold holdBefore(const LateReplies& late, const Asked& next, Micros now);

/// Notes bytes that were thrown away: the answer to a request that is still open may be among them,
/// and tells how late answers are. @return how late it was; NEVER when it is none
Micros noteStray(LateReplies* late, const QByteArray& bytes, Micros at);
