/// What holds after every call, whatever the runtime and the wire have done. Take a look before a
/// call and let it judge the driver afterwards; callbacks must be onFinish and onFail of at_rest.h,
/// or none.
#ifndef KP410_TESTS_INVARIANTS_H
#define KP410_TESTS_INVARIANTS_H

#include "support/bytes.h"
#include "support/target.h"

#include <QStringList>

/// Which lock is held, or nothing.
inline QString heldLock(Communication_Protocol& driver)
{
    int number = 0;
    for (QMutex* mutex : {&driver.listMutex, &driver.storageMutex, &driver.stationMutex}) {
        ++number;
        if (!mutex->tryLock())
            return text("lock %1 of lists, store, stations is held", number);
        mutex->unlock();
    }
    return QString();
}

/// What is wrong with a frame: its length, CRC or checksum, fields, or reply description.
/// @param waits the write frame of a pair, whose word is not yet known
QString frameFault(const Protocol& frame, bool write, bool remoteFraming, bool waits);

/// What `after` has that `before` does not explain: a shorter or too long image, or a changed bit
/// outside `target`. New bytes outside it must be 0.
QString storeFault(const Store& before, const Store& after, const Target& target);

/// How every write has ended. A write is known by its label and address: give each call that queues
/// one a label of its own, a decimal number.
struct WriteLedger {
    int queued = 0, done = 0, failed = 0, merged = 0, purged = 0;
};

enum CallKind { CALL_ADDS, CALL_TURNS, CALL_ANSWERS, CALL_OTHER };

class Watch
{
public:
    Watch(Communication_Protocol& driver, const Store& store);

    /// Before a call that may queue `unchecked` entries beyond the limit of a list.
    void begin(CallKind kind, int unchecked = 0);

    /// After it. @param target the bits of the store that it may have changed
    /// @return the first thing that does not hold; empty when all does
    QString end(const Target& target);

    /// The bits that the next call of ComCommunication, or of DataCom, may change.
    Target targetOfTurn() const;
    Target targetOfReply() const;

    WriteLedger ledger;

private:
    QString listsFault() const;
    QString framesFault();
    QString addedFault();
    QString endedFault();

    Communication_Protocol& driver;
    const Store& store;
    CallKind call = CALL_OTHER;
    int mayAdd = 0;
    bool remoteFraming = false; ///< of the frames that are pending
    bool hadFrames = false;
    Store storeBefore;
    QList<RW_VAR> writesBefore, onceBefore;
    int readsBefore = 0;
};

#endif
