#include "loop.h"

#include "account.h"
#include "callbacks.h"
#include "station_switch.h"
#include "write_queue.h"

#include <QThread>

namespace
{

constexpr unsigned long IDLE_MICROS = 20 * MICROS_PER_MILLI;

void loseLink(Panel* panel)
{
    ++panel->statistics.linkLosses;
    const QString why = panel->link.lossText(*panel->link.device);
    takeDown(&panel->link, why, panel->clock());
    note(panel, QStringLiteral("link to %1 lost: %2").arg(panel->link.name, panel->link.error));
}

bool linkReady(Panel* panel)
{
    if (panel->link.device)
        return true;
    const bool first = panel->link.opened == 0;
    const QString before = panel->link.error;
    if (bringUp(&panel->link, panel->clock())) {
        note(panel, QStringLiteral("link to %1 %2")
                        .arg(panel->link.name,
                             first ? QStringLiteral("open") : QStringLiteral("open again")));
        return true;
    }
    if (panel->link.error != before)
        note(panel, QStringLiteral("cannot open %1: %2").arg(panel->link.name, panel->link.error));
    return false;
}

Request requestFor(const Panel& panel, const Protocol& protocol)
{
    Request request;
    request.asked = {protocol.frame.left(protocol.frameLength), protocol.replyLength,
                     panel.info.remoteFraming != 0};
    request.station = protocol.var.station;
    request.timeout = panel.timeout;
    request.hold = lateReplyHold(panel.late, request.asked, panel.clock());
    request.echo = panel.echo;
    return request;
}

/// @return false when there was nothing to do
bool exchangeNext(Panel* panel)
{
    const Protocol* protocol = panel->driver.comCommunication();
    takeDriverCallbacks(panel, nullptr);
    if (protocol == nullptr)
        return false;
    // The driver's record is gone once the reply has been handed back.
    const Request request = requestFor(*panel, *protocol);
    Exchanged exchanged = exchange(&panel->link, request, panel->clock);
    panel->statistics.discarded += exchanged.discarded;
    const bool answered = request.asked.replyLength == REPLY_NONE || !exchanged.reply.isEmpty();
    noteOutcome(&panel->late, request.asked, answered, exchanged.requestedAt, panel->timeout);
    // The driver still holds the frame of an exchange that the link broke and gives it out again.
    if (exchanged.linkLost) {
        loseLink(panel);
        return true;
    }
    panel->info.retryLimit = retryLimitFor(*panel, request.station);
    takeReply(panel, request, &exchanged);
    return true;
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
        panel->stations[tag.station] = StationWatch();
    }
    panel->blocks = panel->driver.reCreatReadVarList(&variables);
    return panel->blocks > 0 ? QString() : QStringLiteral("the driver took none of the tags");
}

void turn(Panel* panel)
{
    queueDueWrites(panel);
    probeStations(panel);
    if (panel->paused || !linkReady(panel) || !exchangeNext(panel))
        QThread::usleep(IDLE_MICROS);
    else
        QThread::usleep(static_cast<unsigned long>(panel->delay));
}
