#include "account.h"

#include "station_switch.h"

namespace
{

QString variableText(const RW_VAR& var)
{
    const bool known = var.regType >= 0 && var.regType < REGISTER_TYPE_COUNT;
    const char* type = known ? REGISTER_TYPES[var.regType].name : "unknown type";
    return QStringLiteral("%1 %2, length %3, station %4")
        .arg(QLatin1String(type))
        .arg(var.address)
        .arg(var.length)
        .arg(var.station);
}

QByteArray hostRead(const Panel& panel, const Tag& tag)
{
    QByteArray raw;
    QString address = tag.addressText;
    panel.driver.getRegisterData(0, tag.type, &address, tag.station, &raw, tag.length);
    return raw;
}

/// A host write takes each byte in a 16-bit slot, a host read delivers them packed.
QByteArray asHostRead(const Tag& tag, const QByteArray& written)
{
    if (REGISTER_TYPES[tag.type].definition != DEF_BYTE)
        return written;
    QByteArray packed;
    for (int i = 0; i < written.size(); i += 2)
        packed += written.at(i);
    return packed;
}

void takeFinish(Panel* panel, TimedCallback* callback)
{
    const CallbackRecord& record = callback->record;
    const int index = findWrite(panel->writes, record.hostKey, record.hostSubKey);
    if (index < 0) {
        callback->about = QStringLiteral("no write of ours");
        return;
    }
    finishWrite(&panel->writes, index, record.state == FINISH_DONE, callback->at);
    const Write& write = panel->writes[index];
    callback->about = QStringLiteral("write ") + writeText(write, panel->tags);
    note(panel, QStringLiteral("%1 %2, finish callback state %3")
                    .arg(callback->about, QLatin1String(writeStateText(write.state)))
                    .arg(record.state));
    if (write.state == WriteState::Done) {
        TagState& state = panel->states[write.tag];
        takeValue(panel->tags[write.tag], asHostRead(panel->tags[write.tag], write.value), &state);
        state.writtenAt = callback->at;
    }
}

void takeBlock(Panel* panel, const RW_VAR& served, bool good)
{
    const Micros now = panel->clock();
    countBlock(&panel->statistics, served, good, now);
    const ImageRange block = rangeOfBlock(served);
    for (int i = 0; i < panel->tags.size(); ++i) {
        const Tag& tag = panel->tags[i];
        TagState& state = panel->states[i];
        if (!good) {
            markFailed(tag, block, now, &state);
            continue;
        }
        if (!markReceived(tag, block, now, &state))
            continue;
        takeValue(tag, hostRead(*panel, tag), &state);
        const int index = compareReadBack(&panel->writes, i, state.value, receivedAt(state));
        if (index >= 0)
            note(panel, QStringLiteral("read back %1=%2 (%3)")
                            .arg(tag.name, state.value,
                                 panel->writes[index].readBack == ReadBack::Same
                                     ? QStringLiteral("as written")
                                     : QStringLiteral("DIFFERENT")));
    }
}

} // namespace

void takeDriverCallbacks(Panel* panel, const RW_VAR* served)
{
    for (const CallbackRecord& record : takeCallbacks()) {
        TimedCallback callback{panel->clock(), record, QString()};
        if (record.finish) {
            takeFinish(panel, &callback);
        } else {
            callback.about =
                served != nullptr ? variableText(*served) : QStringLiteral("unsendable");
            panel->lastFail =
                QStringLiteral("%1 s: %2").arg(secondsText(callback.at), callback.about);
            note(panel, QStringLiteral("fail callback: %1 given up").arg(callback.about));
        }
        countCallback(&panel->statistics, callback);
    }
}

void takeReply(Panel* panel, const Request& request, Exchanged* exchanged, bool answered)
{
    const bool expected = request.asked.replyLength != REPLY_NONE;
    if (expected)
        watchAnswer(panel, request.station, answered, exchanged->requestedAt);
    const qint64 failsBefore = panel->statistics.fails;
    const RW_VAR* served = panel->driver.dataCom(&exchanged->reply, exchanged->reply.size());
    const bool good = isGood(served->result);
    panel->retrying = served->result == RESULT_RETRY;
    countTurn(&panel->statistics, {request.station, served->result, request.asked.frame.size(),
                                   exchanged->reply.size(), expected});
    // The record names the variable finished last, which is this one only when it has no frame
    // left.
    const bool finished =
        good ? panel->info.framesDone >= panel->info.frameCount : !panel->retrying;
    if (finished && served->rwFlag == RW_READ)
        takeBlock(panel, *served, good);
    takeDriverCallbacks(panel, served);
    if (panel->statistics.fails > failsBefore && !answered)
        watchGivenUp(panel, request.station);
}
