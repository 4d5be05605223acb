#include "account.h"

namespace
{

QString seconds(Micros time)
{
    return QString::number(static_cast<double>(time) / MICROS_PER_SECOND, 'f', 2);
}

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

QString readValue(Panel* panel, const Tag& tag)
{
    QByteArray raw;
    QString address = tag.addressText;
    panel->driver.getRegisterData(0, tag.type, &address, tag.station, &raw, tag.length);
    return formatValue(tag, raw);
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
        // One answer makes one block fresh, not the station's other tags.
        for (int i = 0; i < panel->tags.size(); ++i)
            if (panel->tags[i].station == station)
                panel->states[i].failed = true;
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

} // namespace

void note(Panel* panel, const QString& text)
{
    panel->events << Event{panel->clock(), text};
}

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
