// Answers that may still come to requests given up. By its looks such an answer could be the next
// request's: the driver compares length and CRC alone, so it is kept away from it here.
#pragma once

#include "timing.h"

#include <QByteArray>
#include <QVector>

/// A request as far as its answer can be told from another's.
struct Asked {
    QByteArray frame;
    int replyLength = 0; ///< ReplyLength or bytes
    bool remote = false; ///< framing
};

struct Unanswered {
    Asked asked;
    Micros expires = 0; ///< an answer later than this is not expected
};

struct LateReplies {
    QVector<Unanswered> requests;
};

/// Notes how a request sent at `askedAt` ended. After a request was repeated, the answer may be
/// that to an earlier try; then the later one's is still to come.
void noteOutcome(LateReplies* late, const Asked& asked, bool answered, Micros askedAt,
                 Micros timeout);

/// How long to listen, and throw away, before `next` may be sent. A repeated frame needs no such
/// care, since either answer is right for it, nor does one whose answer will look different.
Micros lateReplyHold(const LateReplies& late, const Asked& next, Micros now);

/// A whole, undamaged reply that cannot be the answer to `asked`: another station's, another
/// function's, that to a write elsewhere or of something else, or one that contradicts itself.
/// Always false for the remote framing, whose replies do not say what they answer.
bool isForeign(const Asked& asked, const QByteArray& reply);
