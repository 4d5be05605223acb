#include "loop.h"

#include "account.h"
#include "callbacks.h"

#include <QThread>

namespace
{

constexpr unsigned long IDLE_MICROS = 20 * MICROS_PER_MILLI;

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
