/// A cyclic list at work: every entry gets the same good reply.
#ifndef KP410_BENCH_CYCLIC_H
#define KP410_BENCH_CYCLIC_H

#include "driver.h"

inline constexpr int WORD_BYTES = 2;

/// What the controller answers. A row whose bytes come over a wire receives them in here.
inline QByteArray cyclicReply;
inline qint64 goodReplies = 0;

VAR_DESC description(int type, int address, int station, int length);

/// Has the driver make its cyclic list of `vars`, in blocks of `block` units, and keeps the reply
/// to each of them. The images have their size.
void prepareCyclic(QList<VAR_DESC> vars, int block, const QByteArray& reply);

/// Ten entries of `words` words each, from word 0 on.
void setUpWords(int words);

/// Hands over the first `length` bytes of `cyclicReply`.
inline void takeReply(int length)
{
    goodReplies += driver.dataCom(&cyclicReply, length)->result == RESULT_GOOD ? 1 : 0;
}

/// Every turn had a good reply and moved its entry to the end; the last reply is in the store.
void checkTurns(int size, qint64 operations);

#endif
