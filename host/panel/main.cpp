// The stand-in runtime: loads the driver, registers the tags of a file and runs the loop.
#include "screen.h"
#include "session.h"
#include "tag_file.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace
{

constexpr const char* LIBRARY = "libtalmor_kp410_port.so.1";
constexpr qint64 NANOS_PER_MICRO = 1000;

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int)
{
    interrupted = 1;
}

void takeSignals()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        if (std::signal(number, interrupt) == SIG_IGN)
            std::signal(number, SIG_IGN); // as nohup wants it
    std::signal(SIGPIPE, SIG_IGN); // a reader that has gone must not end a write to the controller
}

QStringList libraryCandidates(const Options& options)
{
    if (!options.library.isEmpty())
        return {options.library};
    const QString name = QLatin1String(LIBRARY);
    return {QCoreApplication::applicationDirPath() + QStringLiteral("/../lib/") + name, name};
}

ExitStatus run(const Options& options)
{
    Panel panel;
    const TagFile file = readTagFile(options.tagFile);
    panel.tags = file.tags;
    const QStringList errors = file.errors.isEmpty() ? preparePanel(options, &panel) : file.errors;
    if (!errors.isEmpty()) {
        complain(errors);
        return EXIT_USAGE;
    }
    QString error;
    panel.driver = loadDriver(libraryCandidates(options), &error);
    if (panel.driver.handle == nullptr) {
        complain({error});
        return EXIT_USAGE;
    }
    QElapsedTimer timer;
    timer.start();
    panel.clock = [&timer] { return timer.nsecsElapsed() / NANOS_PER_MICRO; };
    const ExitStatus status = runSession(options, &panel, &interrupted);
    unloadDriver(&panel.driver);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const ParsedOptions parsed =
        parseOptions(QCoreApplication::arguments(), {isTerminal(), isatty(STDERR_FILENO) != 0});
    if (!parsed.errors.isEmpty()) {
        complain(parsed.errors);
        return EXIT_USAGE;
    }
    if (!parsed.help.isEmpty()) {
        std::printf("%s", parsed.help.toUtf8().constData());
        return EXIT_WELL;
    }
    takeSignals();
    return run(parsed.options);
}
