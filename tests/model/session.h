/// Calls of a runtime as plain bytes, so that they can be drawn at random, found by a fuzzer, and
/// taken out one by one. A session makes each call on the driver and on the model and looks at both
/// afterwards.
#ifndef KP410_TESTS_SESSION_H
#define KP410_TESTS_SESSION_H

#include "model/model.h"
#include "support/driver.h"
#include "support/invariants.h"

#include <QVector>

#include <array>

/// One call: which, and what its arguments are made of.
struct Operation {
    enum Byte {
        CALL,
        TYPE,
        ADDRESS,
        ADDRESS_VALUE,
        COUNT,
        COUNT_VALUE,
        PLACE,
        KEYS,
        FLAVOUR,
        SEED
    };
    static constexpr int SIZE = SEED + 1;
    std::array<unsigned char, SIZE> bytes;

    int operator[](Byte which) const { return bytes[which]; }
};

/// Whole operations only: what is left over at the end is not used.
QVector<Operation> operationsOf(const unsigned char* bytes, std::size_t size);

class Session
{
public:
    Session(); ///< puts the driver to rest

    /// Makes the call. @return what does not hold afterwards; empty when all does
    QString run(const Operation& operation);

    /// Single calls, for who has arguments of its own. Tell the session when `settings` change.
    void settingsChanged() { model.settings = settings; }
    QString add(const Operation& operation, int source);
    QString turn();
    QString reply(const QByteArray* bytes, int length);

    QStringList told; ///< the calls so far, in words

    static QByteArray goodReply(const Protocol& frame, int seed);

private:
    int number(int selector, int value, int most);
    QString textOf(const Operation& o, int type);
    RW_VAR recordOf(const Operation& o, bool write);
    QString addWrite(RW_VAR var, int mode);
    QString addOnce(RW_VAR var, int mode);
    QString addRead(RW_VAR var);
    QString answer(const Operation& o);
    QString set(const Operation& o);
    QString get(const Operation& o);
    QString regroup(const Operation& o);
    QString cut(const Operation& o);
    QString setting(const Operation& o);
    QString station(const Operation& o);
    QString nulls(const Operation& o);
    QString utilities(const Operation& o);
    QString judge(const Target& target, int is, int expected);
    void tell(const char* name, const QString& arguments);

    Model model;
    Watch watch;
    int serial = 0; ///< of the labels
    int farCalls = 0;
    QByteArray lastReply;
};

/// How a session puts a call into words, and where it takes a station from.
QString shownCall(int type, const QString& address, int count);
int stationIn(const Operation& o);
QByteArray bytesOf(int size, int seed);

/// Runs `operations` on a new session. @return what went wrong first, with the calls up to it
QString runAll(const QVector<Operation>& operations);

/// A short sequence that still fails: chunks are taken out, then single operations.
QVector<Operation> shrink(QVector<Operation> operations);

#endif
