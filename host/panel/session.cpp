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
QString tapLink(const Options& options, qint64 startedAt, PcapFile* pcap, Panel* panel)
{
    const QString error =
        options.pcapFile.isEmpty() ? QString() : openPcap(pcap, options.pcapFile, startedAt);
    if (!error.isEmpty() || (options.pcapFile.isEmpty() && !options.trace))
        return error;
    panel->link.tap = [pcap, panel, trace = options.trace](const WireFrame& frame) {
        if (trace)
            std::fprintf(stderr, "%s\n", traceLine(frame).toUtf8().constData());
        const QString failed = writePcap(pcap, frame);
        if (failed.isEmpty())
            return;
        note(panel, QStringLiteral("the capture ends here: ") + failed);
        pcap->file.reset();
    };
    return QString();
}

QByteArray textOf(const QStringList& lines)
{
    return (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}

/// A run ends with its statistics, beside the records where those are read by a program; a command
/// with what it was asked for. @return what is wrong, empty when nothing
QString report(const Options& options, const Panel& panel, Micros end, QFile* summaryFile)
{
    const QByteArray statistics = textOf(summary(panel, end));
    if (!options.goal.once && !options.goal.written)
        std::fprintf(options.output == Output::Json ? stderr : stdout, "\n%s",
                     statistics.constData());
    else if (options.goal.once && options.output == Output::Events)
        std::printf("%s", textOf(tagTable(panel, end)).constData());
    if ((std::fflush(stdout) != 0 || std::ferror(stdout) != 0) && !readerGone())
        return QStringLiteral("standard output could not be written");
    if (summaryFile->isOpen() &&
        (summaryFile->write(statistics) != statistics.size() || !summaryFile->flush()))
        return QStringLiteral("%1: %2").arg(summaryFile->fileName(), summaryFile->errorString());
    return QString();
}

/// Opens what the run is to write before it begins. @return what is wrong, empty when nothing
QString openSummary(const Options& options, QFile* file)
{
    file->setFileName(options.summaryFile);
    if (options.summaryFile.isEmpty() || file->open(QIODevice::WriteOnly))
        return QString();
    return QStringLiteral("%1: %2").arg(options.summaryFile, file->errorString());
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
        error = tapLink(options, startedAtMs * MICROS_PER_MILLI, &pcap, panel);
    QFile summaryFile;
    if (error.isEmpty())
        error = openSummary(options, &summaryFile);
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
    const QString failed = report(options, *panel, end, &summaryFile);
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
