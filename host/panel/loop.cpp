#include "loop.h"

#include "account.h"
#include "callbacks.h"
#include "station_switch.h"
#include "write_queue.h"

#include <QThread>

namespace
{

constexpr Micros IDLE_MICROS = 20 * MICROS_PER_MILLI;

void loseLink(Panel* panel)
{
    ++panel->statistics.linkLosses;
    for (StationCounters& station : panel->statistics.stations)
        station.lastRead.clear();
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
    request.hold = holdBefore(panel.late, request.asked, panel.clock());
    request.echo = panel.echo;
    return request;
}

void takeStrays(Panel* panel, const QVector<Stray>& strays)
{
    for (const Stray& stray : strays) {
        panel->statistics.discarded += stray.bytes.size();
        const Micros lateness = noteStray(&panel->late, stray.bytes, stray.at);
        if (lateness == NEVER || panel->saidLate)
            continue;
        panel->saidLate = true;
        note(panel, QStringLiteral("an answer came %1 s after its request: the time-out is short")
                        .arg(secondsText(lateness)));
    }
}

void noticeEcho(Panel* panel, const Request& request, const QByteArray& reply)
{
    if (panel->echo || !isEchoed(request.asked, reply))
        return;
    panel->echo = true;
    note(panel, QStringLiteral("the line brings back what is sent: --echo is on from now"));
}

/// The driver counts failed replies over all requests, so the limit starts from its count.
void setRetryLimit(Panel* panel, int station)
{
    if (!panel->retrying)
        panel->info.retryLimit = panel->info.retryCount + retriesFor(*panel, station);
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
    const bool answered =
        request.asked.replyLength == REPLY_NONE || isFromStation(request.asked, exchanged.reply);
    takeStrays(panel, exchanged.strays);
    noteOutcome(&panel->late, request.asked, answered, exchanged.requestedAt, panel->timeout);
    // The driver still holds the frame of an exchange that the link broke and gives it out again.
    if (exchanged.linkLost) {
        loseLink(panel);
        return true;
    }
    noticeEcho(panel, request, exchanged.reply);
    setRetryLimit(panel, request.station);
    takeReply(panel, request, &exchanged, answered);
    panel->nextTurnAt = panel->clock() + panel->delay;
    return true;
}

/// Nothing is sent: the line is paused, or the pause between two requests lasts.
bool isWaiting(const Panel& panel)
{
    return panel.paused || panel.clock() < panel.nextTurnAt;
}

void idle(Panel* panel)
{
    if (panel->link.device && lostMeanwhile(&panel->link, panel->clock()))
        loseLink(panel);
    const Micros pause = panel->nextTurnAt - panel->clock();
    QThread::usleep(pause > 0 && pause < IDLE_MICROS ? static_cast<unsigned long>(pause)
                                                     : static_cast<unsigned long>(IDLE_MICROS));
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
    const bool linkUp = linkReady(panel);
    if (isWaiting(*panel) || !linkUp || !exchangeNext(panel))
        idle(panel);
}
