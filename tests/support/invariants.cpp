#include "support/invariants.h"

#include "support/at_rest.h"

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
Marks missing(const Marks& before, const Marks& after)
{
    Marks gone;
    std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                        std::back_inserter(gone));
    return gone;
}

bool sameGroup(const RW_VAR& a, const RW_VAR& b)
{
    return a.hostKey == b.hostKey && a.hostSubKey == b.hostSubKey;
}

QString say(const char* text)
{
    return QString::fromLatin1(text);
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
    QString wrong = heldLock(driver);
    if (wrong.isEmpty())
        wrong = listsFault();
    if (wrong.isEmpty())
        wrong = framesFault();
    if (wrong.isEmpty())
        wrong = storeFault(storeBefore, store, target);
    if (wrong.isEmpty())
        wrong = call == CALL_TURNS || call == CALL_ANSWERS ? endedFault() : addedFault();
    const int ended = ledger.done + ledger.failed + ledger.merged + ledger.purged;
    if (wrong.isEmpty() && ledger.queued != ended + driver.writeList.size())
        wrong = QString::fromLatin1("%1 writes queued, %2 ended, %3 waiting")
                    .arg(ledger.queued)
                    .arg(ended)
                    .arg(driver.writeList.size());
    return wrong;
}

QString Watch::listsFault() const
{
    const QList<RW_VAR>* const lists[][2] = {{&driver.writeList, &writesBefore},
                                             {&driver.onceReadList, &onceBefore}};
    for (const auto& list : lists) {
        if (list[0]->size() > std::max<int>(LIST_LIMIT, list[1]->size() + mayAdd))
            return say("a list has outgrown its limit");
    }
    return QString();
}

QString Watch::framesFault()
{
    if (!driver.comInfo || driver.frameList.isEmpty())
        return QString();
    if (!hadFrames)
        remoteFraming = driver.comInfo->remoteFraming != 0;
    if (driver.frameList.size() > 2 || driver.currentSource == SOURCE_NONE)
        return say("frames of no variable");
    for (int i = 0; i < driver.frameList.size(); ++i) {
        const QString wrong = frameFault(
            driver.frameList.at(i), driver.currentSource == SOURCE_WRITE, remoteFraming, i > 0);
        if (!wrong.isEmpty())
            return wrong;
    }
    return QString();
}

/// Of a call that may queue writes: they stand at the end, or in the place of one that they
/// replace.
QString Watch::addedFault()
{
    const QList<RW_VAR>& writes = driver.writeList;
    if (!events.isEmpty())
        return say("an unexpected report: ") + events.first();
    if (writes.size() < writesBefore.size())
        return say("a write is lost");
    for (int i = 0; i < writesBefore.size(); ++i) {
        const RW_VAR &old = writesBefore.at(i), &now = writes.at(i);
        if (markOf(old) == markOf(now))
            continue;
        const bool replaces = call == CALL_ADDS && i > 0 && old.station == now.station &&
                              old.regType == now.regType && old.address == now.address &&
                              old.length == now.length;
        if (!replaces)
            return say("a write is replaced by one of another place");
        ++ledger.merged;
        ++ledger.queued;
    }
    const int added = writes.size() - writesBefore.size();
    if (added > 0 && call != CALL_ADDS)
        return say("a write of nobody");
    ledger.queued += added;
    return QString();
}

/// Of a turn or a reply: what has left its list has been served or given up, the callbacks say so,
/// and what has gone with it has the same keys.
QString Watch::endedFault()
{
    const int source = driver.currentSource;
    const Marks lostWrites = missing(marksOf(writesBefore), marksOf(driver.writeList));
    const Marks lostReads = missing(marksOf(onceBefore), marksOf(driver.onceReadList));
    if (writesBefore.size() - driver.writeList.size() != static_cast<int>(lostWrites.size()) ||
        onceBefore.size() - driver.onceReadList.size() != static_cast<int>(lostReads.size()) ||
        driver.readList.size() != readsBefore)
        return say("an entry appeared");
    if ((source != SOURCE_WRITE && !lostWrites.empty()) ||
        (source != SOURCE_ONCE && !lostReads.empty()))
        return say("an entry left another list than the one served");

    const RW_VAR& served = driver.retVar;
    const bool writes = source == SOURCE_WRITE;
    const Marks& gone = writes ? lostWrites : lostReads;
    const bool good = served.result == RESULT_GOOD || served.result == RESULT_GOOD_REMOTE;
    const bool gaveUp =
        call == CALL_ANSWERS ? !good && served.result != RESULT_RETRY : !gone.empty();
    if (gone.empty()) {
        const QStringList expected =
            gaveUp ? QStringList(QString::fromLatin1("fail 0 %1 1").arg(served.hostKey))
                   : QStringList();
        if (gaveUp && source != SOURCE_READ)
            return say("given up, but still in its list");
        return !driver.failCallback || events == expected ? QString() : say("not as reported");
    }
    if (call == CALL_ANSWERS && !good && !gaveUp)
        return say("an entry left while its frame is sent again");
    if (!std::binary_search(gone.begin(), gone.end(), markOf(served)))
        return say("another entry left than the one served");
    if (!gaveUp && gone.size() != 1)
        return say("a write is lost");
    const bool anyStation = driver.comInfo->stationPerVar == 0;
    for (const RW_VAR& var : writes ? writesBefore : onceBefore) {
        const bool left = std::binary_search(gone.begin(), gone.end(), markOf(var));
        const bool group = sameGroup(var, served) && (anyStation || var.station == served.station);
        if (left ? !group : gaveUp && group)
            return say(left ? "a write is lost with another's group" : "a group is split");
    }
    bool later = false;
    for (const RW_VAR& var : writes ? driver.writeList : driver.onceReadList)
        later |= sameGroup(var, served);
    QStringList expected;
    const bool told = writes || served.nodeId == driver.comInfo->ownNode;
    if (told && (gaveUp || !later))
        expected << QString::fromLatin1("finish %1 %2 %3 %4")
                        .arg(driver.comInfo->hostCookie)
                        .arg(served.hostKey)
                        .arg(served.hostSubKey)
                        .arg(gaveUp ? FINISH_FAILED : FINISH_DONE);
    if (gaveUp)
        expected << QString::fromLatin1("fail 0 %1 1").arg(served.hostKey);
    if (driver.finishCallback && events != expected)
        return say("an ending is not reported as it was");
    if (writes) {
        (gaveUp ? ledger.failed : ledger.done) += 1;
        ledger.purged += static_cast<int>(gone.size()) - 1;
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
