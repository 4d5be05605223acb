/// What a controller answers to a request, from the frame alone.
#ifndef KP410_TESTS_REPLY_H
#define KP410_TESTS_REPLY_H

#include "support/bytes.h"

#include "talmor_kp410_port.h"

/// A good reply of the length asked for, its data counting from `first` on in steps of `step`.
inline QByteArray goodReply(const Protocol& request, int first, int step = 0)
{
    if (request.replyLength < 1)
        return QByteArray();
    QByteArray reply(request.replyLength - 2, '\0');
    for (int i = 2; i < reply.size(); ++i, first += step)
        reply[i] = static_cast<char>(first);
    return withCrc(reply.replace(0, 2, request.frame.left(2)));
}

#endif
