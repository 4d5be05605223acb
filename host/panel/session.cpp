#include "session.h"

#include "loop.h"
#include "pcap.h"
#include "screen.h"
#include "summary.h"

#include <QDateTime>

#include <cstdio>

namespace
{

constexpr int OWN_NODE = 1;

QStringList takeWrites(const Options& options, Panel* panel)
{
    QStringList errors;
    const auto take = [&](const QStringList& texts, const char* option, bool timed) {
        for (const QString& text : texts) {
            const QString error = addWrite(text, timed, panel->tags, &panel->writes);
            if (!error.isEmpty())
                errors << QStringLiteral("%1 %2: %3").arg(QLatin1String(option), text, error);
        }
    };
    take(options.writes, "--write", false);
    take(options.timedWrites, "--write-at", true);
    return errors;
}

/// Lets the link tell its frames to the trace and the capture file that are wanted.
/// @return what is wrong, empty when nothing
QString tapLink(const Options& options, qint64 startedAt, PcapFile* pcap, Link* link)
{
    const QString error =
        options.pcapFile.isEmpty() ? QString() : openPcap(pcap, options.pcapFile, startedAt);
    if (!error.isEmpty() || (options.pcapFile.isEmpty() && !options.trace))
        return error;
    link->tap = [pcap, trace = options.trace](const WireFrame& frame) {
        if (trace)
            std::fprintf(stderr, "%s\n", traceLine(frame).toUtf8().constData());
        const QString failed = writePcap(pcap, frame);
        if (failed.isEmpty())
            return;
        complain({failed});
        pcap->file.reset(); // once is enough
    };
    return QString();
}

QString writeFile(const QString& fileName, const QByteArray& text)
{
    QFile file(fileName);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
    return written ? QString() : QStringLiteral("%1: %2").arg(fileName, file.errorString());
}

/// A run ends with its statistics, beside the records where those are read by a program; a command
/// with what it was asked for. @return what is wrong, empty when nothing
QString report(const Options& options, const Panel& panel, Micros end)
{
    const auto lines = [](const QStringList& list) {
        return (list.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
    };
    if (!options.goal.once && !options.goal.written)
        std::fprintf(options.output == Output::Json ? stderr : stdout, "\n%s",
                     lines(summary(panel, end)).constData());
    else if (options.goal.once && options.output == Output::Events)
        std::printf("%s", lines(tagTable(panel, end)).constData());
    return options.summaryFile.isEmpty()
               ? QString()
               : writeFile(options.summaryFile, lines(summary(panel, end)));
}

} // namespace

QStringList preparePanel(const Options& options, Panel* panel)
{
    panel->timeout = options.timeout;
    panel->delay = options.delay;
    panel->retries = options.retries;
    panel->patience = options.patience;
    panel->echo = options.echo;
    panel->info.maxBlockLength = options.block;
    panel->info.retryLimit = options.retries;
    panel->info.stationPerVar = 1;
    panel->info.defaultStation = 1;
    panel->info.remoteFraming = options.remote ? 1 : 0;
    panel->info.ownNode = OWN_NODE;
    panel->info.writeMode = WRITE_QUEUE;
    panel->link = options.tcp.host.isEmpty() ? serialLink(options.serial) : tcpLink(options.tcp);
    return takeWrites(options, panel);
}

ExitStatus runSession(const Options& options, Panel* panel, const volatile int* interrupted)
{
    const qint64 startedAtMs = QDateTime::currentMSecsSinceEpoch();
    PcapFile pcap;
    Display display;
    display.output = options.output;
    QString error = startPanel(panel);
    if (error.isEmpty())
        error = tapLink(options, startedAtMs * MICROS_PER_MILLI, &pcap, &panel->link);
    if (error.isEmpty())
        error = openDisplay(&display, *panel, startedAtMs);
    if (!error.isEmpty()) {
        complain({error});
        return EXIT_USAGE;
    }
    bool quit = false;
    while (!quit && *interrupted == 0 && !goalReached(*panel, options.goal, panel->clock())) {
        turn(panel);
        quit = updateDisplay(&display, panel);
    }
    closeDisplay(&display, panel);
    const Micros end = panel->clock();
    const QString failed = report(options, *panel, end);
    if (!failed.isEmpty()) {
        complain({failed});
        return EXIT_USAGE;
    }
    return exitStatus(*panel, options.goal, end);
}

void complain(const QStringList& errors)
{
    for (const QString& error : errors)
        std::fprintf(stderr, "kp410-panel: %s\n", error.toLocal8Bit().constData());
}
