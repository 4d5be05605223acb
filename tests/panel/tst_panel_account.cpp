// What the loop makes of the driver's record and callbacks, with a driver of the test's own.
#include "account.h"
#include "callbacks.h"
#include "goal.h"
#include "picture.h"
#include "support/cases.h"
#include "tag_file.h"

namespace
{

constexpr int FIRST_WORD = 10; // the address of v, w has the next one

// The driver's record, and the low byte of the one word that it stores.
RW_VAR record;
char stored = 1;

void play(Panel* panel, const QList<QByteArray>& event)
{
    Exchanged exchanged;
    exchanged.requestedAt = panel->clock();
    Request request;
    request.asked.replyLength = REPLY_ANY;
    request.station = 1;
    if (event[0] == "finish") {
        recordFinish(0, panel->writes[event[1].toInt() - 1].hostKey, event[2] == "w",
                     event[3].toInt());
        takeDriverCallbacks(panel, nullptr);
    } else if (event[0] == "fail") {
        ++panel->stations[1].givenUp;
    } else if (event[0] == "store") {
        stored = static_cast<char>(event[1].toInt());
    } else if (event[0] == "reply") {
        record.result = event[1].toInt();
        record.rwFlag = event[2] == "read" ? RW_READ : RW_WRITE;
        record.address = FIRST_WORD + (event[3] == "w");
        record.length = event[3].size();
        panel->info.framesDone = event[4].toInt();
        exchanged.reply = "any";
        takeReply(panel, request, &exchanged, true);
    } else if (event[0] == "silence") {
        record.result = RESULT_RETRY;
        takeReply(panel, request, &exchanged, false);
    } else {
        if (!addWrite(text(event[0]), false, panel->tags, &panel->writes).isEmpty())
            qFatal("neither an event nor a write: %s", event[0].constData());
        panel->writes.last().state = WriteState::Queued;
        panel->writes.last().queuedAt = panel->clock();
    }
}

QString outcome(const Panel& panel)
{
    const char* const readBacks[] = {" open", " same", " different"};
    QStringList writes;
    for (const Write& write : panel.writes)
        writes << text(writeStateText(write.state)) + text(readBacks[int(write.readBack)]);
    return text("%1; %2; exit %3, %4 reads, %5 notes")
        .arg(compactLine(panel, panel.clock()), writes.join(text(", ")))
        .arg(exitStatus(panel, Goal(), panel.clock()))
        .arg(panel.statistics.blocksRead + panel.statistics.blocksGivenUp)
        .arg(panel.events.size());
}

QString events(const Given& in)
{
    Micros now = 0;
    Panel panel;
    panel.driver.dataCom = [](QByteArray*, int) { return &record; };
    panel.driver.getRegisterData = [](int, int, QString*, int, QByteArray* out, int) {
        return (*out = QByteArray(1, stored) + '\0').size();
    };
    panel.link.device = std::make_unique<QBuffer>();
    panel.clock = [&now] { return now; };
    panel.timeout = 300 * MICROS_PER_MILLI;
    panel.info.frameCount = 2;
    panel.tags = parseTags(QString(), text("v,MEMORY_WORD,10,1,1,\nw,MEMORY_WORD,11,1,1,")).tags;
    panel.states = {initialState(panel.tags[0]), initialState(panel.tags[1])};
    record.regType = MEMORY_WORD;
    record.station = 1;
    stored = 1;
    for (const QByteArray& event : parts(in[0], ',')) {
        play(&panel, event.split(' '));
        now += MICROS_PER_MILLI;
    }
    return takeCallbacks().isEmpty() ? outcome(panel) : text("callbacks left");
}

} // namespace

int main(int argc, char** argv)
{
    return runCases(argc, argv, CASES, {{"events", 1, events}});
}
