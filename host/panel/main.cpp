// The stand-in runtime: loads the driver, registers the tags of a file and runs the loop.
#include "callbacks.h"
#include "link_serial.h"
#include "link_tcp.h"
#include "options.h"
#include "screen.h"
#include "summary.h"
#include "tag_file.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <csignal>
#include <cstdio>

namespace
{

constexpr const char* LIBRARY = "libtalmor_kp410_port.so.1";
constexpr int OWN_NODE = 1;
constexpr qint64 NANOS_PER_MICRO = 1000;

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int)
{
    interrupted = 1;
}

int complain(const QStringList& errors)
{
    for (const QString& error : errors)
        std::fprintf(stderr, "kp410-panel: %s\n", error.toLocal8Bit().constData());
    return EXIT_USAGE;
}

QStringList libraryCandidates(const Options& options)
{
    if (!options.library.isEmpty())
        return {options.library};
    const QString name = QLatin1String(LIBRARY);
    return {QCoreApplication::applicationDirPath() + QStringLiteral("/../lib/") + name, name};
}

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

void applyOptions(const Options& options, Panel* panel)
{
    panel->timeout = options.timeout;
    panel->delay = options.delay;
    panel->info.maxBlockLength = options.block;
    panel->info.retryLimit = options.retries;
    panel->info.stationPerVar = 1;
    panel->info.defaultStation = 1;
    panel->info.remoteFraming = options.remote ? 1 : 0;
    panel->info.ownNode = OWN_NODE;
    panel->info.writeMode = WRITE_QUEUE;
    panel->link =
        options.tcpHost.isEmpty()
            ? serialLink({options.serialDevice, options.baud, options.parity, options.stopBits})
            : tcpLink({options.tcpHost, options.tcpPort, options.baud, options.timeout});
}

void run(Panel* panel, Micros duration)
{
    Screen screen = openScreen();
    while (interrupted == 0 && (duration == 0 || panel->clock() < duration)) {
        turn(panel);
        showPanel(&screen, panel);
    }
}

ExitStatus report(const Panel& panel, Micros end, const QString& fileName)
{
    const QByteArray text =
        (summary(panel, end).join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
    std::printf("\n%s", text.constData());
    QFile file(fileName);
    if (!fileName.isEmpty() &&
        (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush())) {
        complain({QStringLiteral("%1: %2").arg(fileName, file.errorString())});
        return EXIT_USAGE;
    }
    return exitStatus(panel, end);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    Options options;
    const QString wrongUse = parseOptions(QCoreApplication::arguments(), &options);
    if (!wrongUse.isEmpty())
        return complain({wrongUse});

    Panel panel;
    const TagFile file = readTagFile(options.tagFile);
    panel.tags = file.tags;
    const QStringList errors = file.errors + takeWrites(options, &panel);
    if (!errors.isEmpty())
        return complain(errors);
    applyOptions(options, &panel);

    QString error;
    panel.driver = loadDriver(libraryCandidates(options), &error);
    if (panel.driver.handle == nullptr)
        return complain({error});
    QElapsedTimer timer;
    timer.start();
    panel.clock = [&timer] { return timer.nsecsElapsed() / NANOS_PER_MICRO; };
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);

    ExitStatus status = EXIT_USAGE;
    const QString refused = startPanel(&panel);
    if (refused.isEmpty()) {
        run(&panel, options.duration);
        const Micros end = panel.clock();
        status = report(panel, end, options.summaryFile);
    } else {
        complain({refused});
    }
    unloadDriver(&panel.driver);
    return status;
}
