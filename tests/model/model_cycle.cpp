#include "model/model.h"
#include "support/at_rest.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int BURST = 5;
constexpr int LARGEST = std::numeric_limits<int>::max();

int replyBytes(const RW_VAR& var)
{
    const int area = areaOf(var.regType);
    const qint64 perUnit = area == AREA_MEMORY || area == AREA_SPECIAL_WORD ? 2 : 1;
    const bool known = var.regType >= 0 && var.regType < REGISTER_TYPE_COUNT;
    const qint64 data = known && var.length > 0 ? perUnit * var.length : 0;
    return 5 + static_cast<int>(std::min<qint64>(data, LARGEST - 5));
}
} // namespace

bool Model::startHead(QList<RW_VAR>& queue, int from)
{
    source = from;
    for (int i = 0; i < queue.size() && off.contains(queue.first().station); ++i)
        queue.append(queue.takeFirst());
    if (off.contains(queue.first().station))
        return false;
    encode(queue.first());
    return true;
}

bool Model::startQueued(QList<RW_VAR>& queue, int from, int& burst)
{
    if (queue.isEmpty() || burst >= BURST)
        return false;
    const bool started = startHead(queue, from);
    ++burst;
    if (started && frames.isEmpty()) { // nothing can be sent for it
        finish(false, queue.first().nodeId != settings.ownNode);
        served.result = RESULT_UNKNOWN;
    }
    return started;
}

bool Model::turn()
{
    if (!attached)
        return false;
    if (!frames.isEmpty())
        return true;
    if (startQueued(writes, SOURCE_WRITE, writeBurst) ||
        startQueued(onceReads, SOURCE_ONCE, onceBurst))
        return !frames.isEmpty();
    if (reads.isEmpty() || !startHead(reads, SOURCE_READ))
        settings.scanDone = 1;
    writeBurst = onceBurst = 0;
    return !frames.isEmpty();
}

void Model::encode(const RW_VAR& var)
{
    constexpr int acknowledgement = 8;
    const int type = var.regType;
    if (source != SOURCE_WRITE) {
        frames.append({var, replyBytes(var), 3, -1});
    } else if (settings.remoteFraming != 0) {
        frames.append({var, var.station == 0 ? 0 : acknowledgement, 0, -1});
        store(var);
    } else {
        if (type < 0 || type > SPECIAL_BIT || areaOf(type) == AREA_INPUT)
            return;
        const bool words = type == MEMORY_WORD || type == MEMORY_DWORD;
        if (words && var.length > MAX_ELEMENTS)
            return;
        if (type == MEMORY_BIT || type == MEMORY_BYTE) {
            RW_VAR step = var;
            step.address = type == MEMORY_BIT ? var.address / 16 : var.address / 2;
            step.rwFlag = RW_READ;
            step.rmwStep = -1;
            if (var.station != 0 && var.address >= 0) {
                frames.append({step, 7, 3, -1});
                step.rwFlag = RW_WRITE;
                step.rmwStep = 0;
                frames.append({step, acknowledgement, 0, -1});
            }
        } else {
            frames.append({var, acknowledgement, 0, -1});
        }
        if (!failed)
            store(var);
    }
    if (frames.isEmpty())
        return;
    settings.frameCount = frames.size();
    settings.framesDone = 0;
}

void Model::finish(bool good, bool remote)
{
    QList<RW_VAR>* queue = source == SOURCE_WRITE  ? &writes
                           : source == SOURCE_ONCE ? &onceReads
                                                   : nullptr;
    QList<RW_VAR>* from = queue ? queue : source == SOURCE_READ ? &reads : nullptr;
    if (from && !from->isEmpty()) {
        const RW_VAR head = from->takeFirst();
        served = head;
        served.data.clear();
        bool later = false;
        for (const RW_VAR& other : *from)
            later |= sameKeys(other, head);
        if (!queue)
            from->append(head);
        else if (reports && (source == SOURCE_WRITE || !remote) && !(good && later))
            events << finishEvent(settings.hostCookie, head.hostKey, head.hostSubKey,
                                  good ? FINISH_DONE : FINISH_FAILED);
    }
    if (good)
        return;
    if (reports)
        events << failEvent(0, served.hostKey, 1);
    for (int i = queue ? queue->size() - 1 : -1; i >= 0; --i) {
        const RW_VAR& other = queue->at(i);
        if (sameKeys(other, served) &&
            (settings.stationPerVar == 0 || other.station == served.station))
            queue->removeAt(i);
    }
}

int Model::reply(const QByteArray* reply, int length)
{
    served.result = RESULT_GOOD;
    if (frames.isEmpty() || !attached || (!reply && length != 0))
        return RESULT_GOOD;
    const ModelFrame head = frames.first();
    const int flag = head.var.rwFlag;
    const bool remote = head.var.nodeId != settings.ownNode;
    int error = 0;
    if (length == 0)
        error = head.replyLength == 0 ? 0 : 41;
    else if (length != head.replyLength)
        error = 71;
    else if (length < 2 || reply->size() < length || (flag != RW_READ && flag != RW_WRITE) ||
             crcBytes(reply->left(length - 2)) != reply->mid(length - 2, 2))
        error = 11;
    if (error != 0) {
        const int key = head.var.hostKey;
        failed = true;
        scanCount = settings.scanDone = 0;
        if (++settings.retryCount <= settings.retryLimit)
            return served.result = RESULT_RETRY;
        settings.retryCount = 0;
        frames.clear();
        finish(false, remote);
        return served.result = error + (remote ? 100 : 0) + (key >= 0 && key < 12 ? key : 0);
    }
    const bool completes = length > 0 && head.var.rmwStep == -1;
    const int code = remote && !(completes && settings.framesDone != 1) ? 100 : 1;
    if (length > 0)
        take(head, reply->left(length), remote);
    failed = false;
    frames.removeFirst();
    if (++settings.framesDone < settings.frameCount || !frames.isEmpty())
        return served.result = code;
    if (!remote && settings.scanDone == 0 && ++scanCount > reads.size()) {
        scanCount = 0;
        settings.scanDone = 1;
    }
    finish(true, remote);
    return served.result = code;
}

/// An accepted reply: merged into the write that waits behind it, or stored.
void Model::take(const ModelFrame& head, const QByteArray& reply, bool remote)
{
    const auto byte = [&](int i) { return static_cast<unsigned char>(reply.at(i)); };
    if (!remote && head.var.rwFlag != RW_READ)
        return;
    if (head.var.rmwStep == -1) {
        if (frames.size() < 2)
            return;
        const RW_VAR& write = writes.first();
        const int value = write.data.isEmpty() ? 0 : static_cast<unsigned char>(write.data.at(0));
        int word = byte(3) * 256 + byte(4);
        if (write.regType == MEMORY_BIT)
            word = (word & ~(1 << (write.address % 16))) | (value != 0) << (write.address % 16);
        else
            word = write.address % 2 == 0 ? word / 256 * 256 + value : value * 256 + word % 256;
        frames[1].word = word;
        return;
    }
    if (remote)
        return;
    QByteArray data = reply.mid(head.dataOffset, reply.size() - 5);
    const Target target = readTarget(head.var, data.size());
    QByteArray bits;
    for (int i = 0; i < target.bits; ++i) { // words travel high byte first
        const int at = widthOf(head.var.regType) == 16 ? (i / 8) ^ 1 : i / 8;
        bits.append(static_cast<char>((data.at(at) >> (i % 8)) & 1));
    }
    put(target, bits);
}
