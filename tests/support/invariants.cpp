#include "support/invariants.h"

#include "support/at_rest.h"
#include "support/faults.h"

#include <algorithm>
#include <vector>

namespace
{
typedef std::vector<qint64> Marks;

qint64 markOf(const RW_VAR& var)
{
    return (qint64{var.label.toInt()} << 32) + static_cast<quint32>(var.address);
}

Marks marksOf(const QList<RW_VAR>& list)
{
    Marks marks;
    for (const RW_VAR& var : list)
        marks.push_back(markOf(var));
    std::sort(marks.begin(), marks.end());
    return marks;
}

/// Entries of `before` that are not in `after`.
Marks missing(const QList<RW_VAR>& before, const QList<RW_VAR>& after)
{
    const Marks old = marksOf(before), now = marksOf(after);
    Marks gone;
    std::set_difference(old.begin(), old.end(), now.begin(), now.end(), std::back_inserter(gone));
    return gone;
}

bool contains(const Marks& marks, const RW_VAR& var)
{
    return std::binary_search(marks.begin(), marks.end(), markOf(var));
}

} // namespace

Watch::Watch(Communication_Protocol& watched, const Store& images) : driver(watched), store(images)
{
}

void Watch::begin(CallKind kind, int unchecked)
{
    call = kind;
    mayAdd = unchecked;
    hadFrames = !driver.frameList.isEmpty();
    storeBefore = store;
    writesBefore = driver.writeList;
    onceBefore = driver.onceReadList;
    readsBefore = driver.readList.size();
    events.clear();
}

QString Watch::end(const Target& target)
{
    const bool ends = call == CALL_TURNS || call == CALL_ANSWERS;
    const QString wrong =
        firstOf({heldLock(driver), listsFault(), framesFault(),
                 storeFault(storeBefore, store, target), ends ? endedFault() : addedFault()});
    const int ended = ledger.done + ledger.failed + ledger.merged + ledger.purged;
    return firstOf({wrong, firstWrong({{"the number of writes queued", ledger.queued,
                                        ended + driver.writeList.size()}})});
}

QString Watch::listsFault() const
{
    const auto most = [this](int before) { return std::max<int>(LIST_LIMIT, before + mayAdd); };
    return firstBroken(
        {{driver.writeList.size() > most(writesBefore.size()), "too many writes"},
         {driver.onceReadList.size() > most(onceBefore.size()), "too many one-shot reads"}});
}

QString Watch::framesFault()
{
    const QList<Protocol>& frames = driver.frameList;
    if (!driver.comInfo || frames.isEmpty())
        return QString();
    if (!hadFrames)
        remoteFraming = driver.comInfo->remoteFraming != 0;
    if (frames.size() > 2 || driver.currentSource == SOURCE_NONE)
        return text("frames of no variable");
    const bool write = driver.currentSource == SOURCE_WRITE;
    return firstOf(
        {frameFault(frames.first(), write, remoteFraming, false),
         frames.size() < 2 ? QString() : frameFault(frames.last(), write, remoteFraming, true)});
}

/// Of a call that may queue writes: they stand at the end, or in the place of one that they
/// replace.
QString Watch::addedFault()
{
    const QList<RW_VAR>& writes = driver.writeList;
    if (!events.isEmpty())
        return text("an unexpected report: ") + events.first();
    if (writes.size() < writesBefore.size())
        return text("a write is lost");
    for (int i = 0; i < writesBefore.size(); ++i) {
        const RW_VAR &old = writesBefore.at(i), &now = writes.at(i);
        if (markOf(old) == markOf(now))
            continue;
        const bool replaces = call == CALL_ADDS && i > 0 && samePlace(old, now);
        if (!replaces)
            return text("a write is replaced by one of another place");
        ++ledger.merged;
        ++ledger.queued;
    }
    const int added = writes.size() - writesBefore.size();
    ledger.queued += added;
    return added > 0 && call != CALL_ADDS ? text("a write of nobody") : QString();
}

/// Of a turn or a reply: what has left its list has been served or given up, the callbacks say so,
/// and what has gone with it has the same keys.
QString Watch::endedFault()
{
    const bool writes = driver.currentSource == SOURCE_WRITE;
    const bool queued = writes || driver.currentSource == SOURCE_ONCE;
    const QList<RW_VAR>& before = writes ? writesBefore : onceBefore;
    const QList<RW_VAR>& after = writes ? driver.writeList : driver.onceReadList;
    const Marks lostWrites = missing(writesBefore, driver.writeList);
    const Marks lostReads = missing(onceBefore, driver.onceReadList);
    const Marks& gone = writes ? lostWrites : lostReads;
    const Marks& goneElsewhere = writes ? lostReads : lostWrites;
    const int left = static_cast<int>(gone.size());
    const int shrunk = writesBefore.size() + onceBefore.size() - driver.writeList.size() -
                       driver.onceReadList.size();
    const RW_VAR& served = driver.retVar;
    const bool answered = call == CALL_ANSWERS, sentAgain = served.result == RESULT_RETRY;
    const bool good = served.result == RESULT_GOOD || served.result == RESULT_GOOD_REMOTE;
    const bool gaveUp = answered ? !good && !sentAgain : left > 0;
    const bool anyStation = driver.comInfo && driver.comInfo->stationPerVar == 0;
    bool stranger = false, split = false, later = false;
    for (const RW_VAR& var : before) {
        const bool group = sameKeys(var, served) && (anyStation || var.station == served.station);
        stranger |= contains(gone, var) && !group;
        split |= !contains(gone, var) && group && gaveUp && left > 0;
    }
    for (const RW_VAR& var : after)
        later |= sameKeys(var, served);
    QStringList expected;
    if (left > 0 && (writes || served.nodeId == driver.comInfo->ownNode) && (gaveUp || !later))
        expected << finishEvent(driver.comInfo->hostCookie, served.hostKey, served.hostSubKey,
                                gaveUp ? FINISH_FAILED : FINISH_DONE);
    if (gaveUp)
        expected << failEvent(0, served.hostKey, 1);
    const QString wrong = firstBroken(
        {{before.size() - after.size() != left || shrunk != left, "an entry appeared"},
         {driver.readList.size() != readsBefore, "a cyclic read appeared, or is lost"},
         {!goneElsewhere.empty() || (left > 0 && !queued), "an entry left the wrong list"},
         {left == 0 && gaveUp && queued, "given up, but still in its list"},
         {left > 0 && answered && sentAgain, "an entry left while its frame is sent again"},
         {left > 0 && !contains(gone, served), "another entry left than the one served"},
         {left > 1 && !gaveUp, "a write is lost"},
         {stranger, "a write is lost with another's group"},
         {split, "a group is split"},
         {driver.finishCallback && events != expected, "an ending is not reported as it was"}});
    if (!wrong.isEmpty())
        return wrong;
    if (writes && left > 0) {
        (gaveUp ? ledger.failed : ledger.done) += 1;
        ledger.purged += left - 1;
    }
    return QString();
}

Target Watch::targetOfTurn() const
{
    if (!driver.comInfo || (driver.lastFailed && driver.comInfo->remoteFraming == 0))
        return Target();
    for (const RW_VAR& var : driver.writeList) {
        if (!driver.stationMap.contains(var.station))
            return writeTarget(var);
    }
    return Target();
}

Target Watch::targetOfReply() const
{
    if (!driver.comInfo || driver.frameList.isEmpty())
        return Target();
    const Protocol& head = driver.frameList.first();
    if (head.var.nodeId != driver.comInfo->ownNode || head.var.rwFlag != RW_READ ||
        head.var.rmwStep == RMW_READ_STEP)
        return Target();
    return readTarget(head.var, std::max(head.replyLength - 5, 0));
}
