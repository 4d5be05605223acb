// The times of the line: silent interval, end of a reply, late replies, back-off of a link that is
// down and of a station that does not answer.
#include "late_replies.h"
#include "link.h"
#include "stations.h"
#include "support/cases.h"

namespace
{

QString limits(const Given& in)
{
    const ReceiveLimits limits =
        receiveLimits(in[0].toInt(), in[1].toInt(), in[2].toInt(), in[3].toLongLong(), USB_GAP);
    return text("%1 %2 %3").arg(limits.silence).arg(limits.gap).arg(limits.timeout);
}

QString receive(const Given& in)
{
    return QString::number(receiveWait(in[0].toInt(), in[1].toInt(), in[2].toLongLong(),
                                       in[3].toLongLong(), {2, 20, 300}));
}

QString lateReply(const Given& in)
{
    LateReplies late;
    QStringList holds;
    for (const QByteArray& step : parts(in[0], ',')) {
        const QList<QByteArray> words = step.split(' ');
        const Micros at = words[words.size() > 2 ? 2 : 1].toInt();
        const QByteArray frame = QByteArray::fromHex(words[0]);
        if (words.size() == 2) {
            holds << text("late by %1").arg(noteStray(&late, frame, at));
            continue;
        }
        const Asked asked = {frame, words[1].toInt(), words[0].startsWith("16")};
        const Hold hold = holdBefore(late, asked, at);
        holds << QString::number(hold.time);
        if (hold.expected > 1)
            holds.last() += text(" for %1").arg(hold.expected);
        noteOutcome(&late, asked, words.size() == 3, at, 300);
    }
    return holds.join(QLatin1Char(' '));
}

QString foreign(const Given& in)
{
    const Asked asked = {QByteArray::fromHex(in[0]), 7, in[0].startsWith("16")};
    const QByteArray reply = QByteArray::fromHex(in[1]);
    return text(isForeign(asked, reply) ? "foreign" : "ours") +
           text(isFromStation(asked, reply) ? "" : ", not of the station") +
           text(isEchoed(asked, reply) ? ", echoed" : "");
}

QString stations(const Given& in)
{
    const char* const modes[] = {"on", "dead", "probing", "off"};
    const char* const switches[] = {"", "=0", "=1"}; // the last argument of EnCommStation
    StationWatch station;
    QStringList seen;
    for (const QByteArray& step : parts(in[0], ',')) {
        const Micros at = step.split(' ').value(1).toInt() * MICROS_PER_MILLI;
        Switch change = Switch::Keep;
        if (step == "answer")
            noteAnswer(&station);
        else if (step == "key")
            change = toggleByHand(&station);
        else if (step.startsWith("fail"))
            change = noteGivenUp(&station, 2, at);
        else
            change = probeWhenDue(&station, at);
        seen << text(modes[int(station.mode)]) + text(switches[int(change)]);
    }
    return seen.join(QLatin1Char(' '));
}

QString backOff(const Given& in)
{
    const Micros quarter = MICROS_PER_SECOND / 4;
    bool there = false;
    Link link;
    link.open = [&there](QString* error) -> std::unique_ptr<QIODevice> {
        *error = text("gone");
        return there ? std::make_unique<QBuffer>() : nullptr;
    };
    QStringList seen;
    for (const QByteArray& step : parts(in[0], ',')) {
        const Micros at = step.split(' ').value(1).toInt() * quarter;
        there = there || step == "device";
        if (step.startsWith("try"))
            bringUp(&link, at);
        else if (step == "bytes")
            noteHeard(&link, at);
        else if (step.startsWith("cut"))
            takeDown(&link, text("cut"), at);
        seen << (link.device
                     ? text("up %1").arg(link.failedTries)
                     : link.error +
                           text(" %1>%2").arg(link.failedTries).arg(link.retryAt / quarter));
    }
    return seen.join(QLatin1Char(' '));
}

} // namespace

int main(int argc, char** argv)
{
    return runCases(argc, argv, CASES,
                    {{"limits", 4, limits},
                     {"receive", 4, receive},
                     {"lateReply", 1, lateReply},
                     {"foreign", 2, foreign},
                     {"stations", 1, stations},
                     {"backOff", 1, backOff}});
}
