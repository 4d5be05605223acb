/// The communication task and a controller as small as can be: it answers from the frame alone.
#ifndef KP410_TESTS_WIRE_H
#define KP410_TESTS_WIRE_H

#include "support/bytes.h"

#include "talmor_kp410_port.h"

/// Numbers without a pattern from numbers in sequence, the same in every run.
inline unsigned scattered(int number)
{
    const unsigned mixed = static_cast<unsigned>(number) * 2654435761U;
    return mixed ^ (mixed >> 15);
}

/// A good reply of the length asked for, every data byte `fill`.
inline QByteArray goodReply(const Protocol& request, int fill)
{
    if (request.replyLength < 1)
        return QByteArray();
    QByteArray reply(request.replyLength - 2, static_cast<char>(fill));
    reply.replace(0, 2, request.frame.left(2));
    return withCrc(reply);
}

enum WireFault { FAULT_NONE, FAULT_MISSING, FAULT_CORRUPT, FAULT_SHORT };

inline QByteArray spoiled(QByteArray reply, unsigned fault)
{
    if (fault == FAULT_MISSING)
        reply.clear();
    else if (fault == FAULT_SHORT)
        reply.chop(1);
    else if (fault == FAULT_CORRUPT && !reply.isEmpty())
        reply[reply.size() - 1] = static_cast<char>(~reply.at(reply.size() - 1));
    return reply;
}

/// Turn number `number` of the loop; one reply in `oddsOfFault` / 3 is bad or missing.
inline void turn(int number, unsigned oddsOfFault)
{
    const Protocol* request = ComCommunication();
    if (!request)
        return;
    QByteArray reply = spoiled(goodReply(*request, number), scattered(number) % oddsOfFault);
    DataCom(&reply, reply.size());
}

#endif
