#include "loop.h"

#include <QThread>

namespace
{

constexpr unsigned long IDLE_MICROS = 20 * MICROS_PER_MILLI;

void note(Panel* panel, const QString& text)
{
    panel->events << Event{panel->clock(), text};
}

QString seconds(Micros time)
{
    return QString::number(static_cast<double>(time) / MICROS_PER_SECOND, 'f', 2);
}

QString variableText(const RW_VAR& var)
{
    const ImageRange range = rangeOfBlock(var);
    const char* type = range.end > 0 ? REGISTER_TYPES[var.regType].name : "unknown";
    return QStringLiteral("%1 %2, length %3, station %4")
        .arg(QLatin1String(type))
        .arg(var.address)
        .arg(var.length)
        .arg(var.station);
}

QString readValue(Panel* panel, const Tag& tag)
{
    QByteArray raw;
    QString address = tag.addressText;
    panel->driver.getRegisterData(0, tag.type, &address, tag.station, &raw, tag.length);
    return formatValue(tag, raw);
}

void queueDueWrites(Panel* panel)
{
    const Micros now = panel->clock();
    for (Write& write : panel->writes) {
        if (write.state != WriteState::Waiting || write.due > now)
            continue;
        const Tag& tag = panel->tags[write.tag];
        QString label = tag.name, address = tag.addressText;
        QByteArray value = write.value;
        const int queued = panel->driver.setRegisterData(
            &label, tag.type, &address, tag.station, &value, tag.length, write.hostKey, write.tag);
        write.state = queued > 0 ? WriteState::Queued : WriteState::Refused;
        write.queuedAt = now;
        note(panel,
             QStringLiteral("write %1 %2")
                 .arg(writeText(write, panel->tags), QLatin1String(writeStateText(write.state))));
    }
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
        state.value = write.shown;
        state.written = true;
    }
}

/// @param served the variable of a failed read, null when the driver gave up before sending
void takeDriverCallbacks(Panel* panel, const RW_VAR* served)
{
    for (const CallbackRecord& record : takeCallbacks()) {
        TimedCallback callback{panel->clock(), record, QString()};
        if (record.finish) {
            takeFinish(panel, &callback);
        } else {
            callback.about =
                served != nullptr ? variableText(*served) : QStringLiteral("unsendable");
            panel->lastFail = QStringLiteral("%1 s: %2").arg(seconds(callback.at), callback.about);
            note(panel, QStringLiteral("fail callback: %1 given up").arg(callback.about));
        }
        countCallback(&panel->statistics, callback);
    }
}

void noteAnswer(Panel* panel, int station, bool answered)
{
    const Micros now = panel->clock();
    const bool wasSilent = panel->silentSince.contains(station);
    if (!answered && !wasSilent) {
        panel->silentSince[station] = panel->lastRequestAt;
        note(panel, QStringLiteral("station %1 does not answer").arg(station));
    } else if (answered && wasSilent) {
        const Micros since = panel->silentSince.take(station);
        note(panel, QStringLiteral("station %1 answers again after %2 s")
                        .arg(station)
                        .arg(seconds(now - since)));
    }
}

void takeBlock(Panel* panel, const RW_VAR& served, bool good)
{
    ++panel->statistics.cyclicReads;
    const ImageRange block = rangeOfBlock(served);
    const Micros now = panel->clock();
    for (int i = 0; i < panel->tags.size(); ++i) {
        const Tag& tag = panel->tags[i];
        TagState& state = panel->states[i];
        if (!good) {
            markFailed(tag, block, &state);
            continue;
        }
        if (!markReceived(tag, block, now, &state))
            continue;
        state.value = readValue(panel, tag);
        const int index = compareReadBack(&panel->writes, i, state.value);
        if (index >= 0)
            note(panel, QStringLiteral("read back %1=%2 (%3)")
                            .arg(tag.name, state.value,
                                 panel->writes[index].readBack == ReadBack::Same
                                     ? QStringLiteral("as written")
                                     : QStringLiteral("DIFFERENT")));
    }
}

void takeReply(Panel* panel, Exchanged* exchanged, int station, int replyLength)
{
    if (replyLength != REPLY_NONE)
        noteAnswer(panel, station, !exchanged->reply.isEmpty());
    const RW_VAR* served = panel->driver.dataCom(&exchanged->reply, exchanged->reply.size());
    const ResultInfo* result = resultInfo(served->result);
    const bool good = result != nullptr && !result->error;
    countReply(&panel->statistics, served->result);
    // The record names the variable finished last, which is this one only when it has no frame
    // left.
    const bool finished =
        good ? panel->info.framesDone >= panel->info.frameCount : served->result != RESULT_RETRY;
    if (finished && served->rwFlag == RW_READ)
        takeBlock(panel, *served, good);
    takeDriverCallbacks(panel, served);
}

void loseLink(Panel* panel)
{
    ++panel->statistics.linkLosses;
    takeDown(&panel->link, panel->link.device->errorString(), panel->clock());
    note(panel, QStringLiteral("link to %1 lost: %2").arg(panel->link.name, panel->link.error));
}

bool linkReady(Panel* panel)
{
    if (panel->link.device)
        return true;
    const bool first = panel->link.opened == 0;
    const QString before = panel->link.error;
    if (bringUp(&panel->link, panel->clock())) {
        panel->unanswered = 0;
        note(panel, QStringLiteral("link to %1 %2")
                        .arg(panel->link.name,
                             first ? QStringLiteral("open") : QStringLiteral("open again")));
        return true;
    }
    if (panel->link.error != before)
        note(panel, QStringLiteral("cannot open %1: %2").arg(panel->link.name, panel->link.error));
    QThread::usleep(IDLE_MICROS);
    return false;
}

} // namespace

QString startPanel(Panel* panel)
{
    panel->driver.setComInfo(&panel->info);
    panel->driver.registCallBackFuncIntf(recordFinish, recordFail);
    QList<VAR_DESC> variables;
    for (const Tag& tag : panel->tags) {
        VAR_DESC variable = {};
        variable.regType = static_cast<unsigned char>(tag.type);
        variable.station = static_cast<unsigned char>(tag.station);
        variable.addressText = tag.addressText;
        variable.label = tag.name;
        variable.length = tag.length;
        variables << variable;
        panel->states << initialState(tag);
    }
    panel->blocks = panel->driver.reCreatReadVarList(&variables);
    return panel->blocks > 0 ? QString() : QStringLiteral("the driver took none of the tags");
}

void turn(Panel* panel)
{
    queueDueWrites(panel);
    if (!linkReady(panel))
        return;
    const Protocol* protocol = panel->driver.comCommunication();
    takeDriverCallbacks(panel, nullptr);
    if (protocol == nullptr) {
        QThread::usleep(IDLE_MICROS);
        return;
    }
    // The record is gone once the reply has been handed back.
    const Request request = {protocol->frame.left(protocol->frameLength), protocol->replyLength,
                             panel->timeout,
                             lateReplyHold(panel->unanswered, protocol->frame == panel->lastFrame,
                                           panel->clock() - panel->lastRequestAt, panel->timeout)};
    const int station = protocol->var.station;
    Exchanged exchanged = exchange(&panel->link, request, panel->clock);
    panel->statistics.discarded += exchanged.discarded;
    // The driver still holds the frame of an exchange that the link broke and gives it out again.
    if (exchanged.linkLost)
        return loseLink(panel);
    if (request.frame != panel->lastFrame)
        panel->unanswered = 0;
    if (request.replyLength != REPLY_NONE && exchanged.reply.isEmpty())
        ++panel->unanswered;
    panel->lastFrame = request.frame;
    panel->lastRequestAt = exchanged.requestedAt;
    takeReply(panel, &exchanged, station, request.replyLength);
    QThread::usleep(static_cast<unsigned long>(panel->delay));
}

bool stationSilent(const Panel& panel, int station)
{
    return !panel.link.device || panel.silentSince.contains(station);
}
