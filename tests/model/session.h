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
#include <functional>

/// Of an operation: which call, and what its arguments are made of.
// clang-format off
enum OperationByte {
    CALL, TYPE, ADDRESS, ADDRESS_VALUE, COUNT, COUNT_VALUE, PLACE, KEYS, FLAVOUR, SEED,
    OPERATION_BYTES
};
// clang-format on
struct Operation {
    std::array<unsigned char, OPERATION_BYTES> bytes;

    int operator[](OperationByte which) const { return bytes[which]; }
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
    QString add(const RW_VAR& var, int source, int mode);
    QString regroup(QList<VAR_DESC> vars);
    QString turn();
    QString reply(const QByteArray* bytes, int length);

    RW_VAR recordOf(const Operation& operation, bool write);

    QStringList told; ///< the calls so far, in words

private:
    struct Made {
        QString words;
        CallKind kind = CALL_OTHER;
        int mayAdd = 0;
        Target target = Target();
    };

    int number(int selector, int value, int most);
    /// @param same the two calls have left the same in the runtime's arguments
    QString both(
        const Made& made, const std::function<int()>& modelled, const std::function<int()>& called,
        const std::function<bool()>& same = [] { return true; });
    QString answer(const Operation& o);
    QString regroupSome(const Operation& o);
    QString set(const Operation& o);
    QString get(const Operation& o);
    QString setting(const Operation& o);
    QString station(const Operation& o);
    QString nulls(const Operation& o);

    Model model;
    Watch watch;
    int serial = 0; ///< of the labels
    int farCalls = 0;
    QByteArray lastReply;
};

QString shown(const RW_VAR& var);

/// Runs `operations` on a new session. @return what went wrong first, with the calls up to it
QString runAll(const QVector<Operation>& operations);

/// A short sequence that still fails: chunks are taken out, then single operations.
QVector<Operation> shrink(QVector<Operation> operations);

#endif
