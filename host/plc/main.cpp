#include "deafness.h"
#include "image_file.h"
#include "links.h"
#include "options.h"
#include "report.h"
#include "signals.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>

namespace
{
constexpr int EXIT_USAGE = 2;
constexpr int MACHINE_INTERVAL_MS = 20;

int fail(const QString& message, int exitCode)
{
    plc::report(message);
    return exitCode;
}

/// Loads what is to be loaded and makes sure that it can be saved. @return the exit code
int prepareFiles(const plc::Options& options, plc::Controller& controller)
{
    if (!options.loadPath.isEmpty()) {
        const plc::LoadedImage loaded = plc::loadImage(options.loadPath, options.stations);
        if (!loaded.error.isEmpty())
            return fail(loaded.error, EXIT_FAILURE);
        for (const QString& error : loaded.image.errors)
            plc::report(error);
        if (!loaded.image.errors.isEmpty())
            return EXIT_USAGE;
        plc::applyImage(loaded.image, controller);
    }
    const QString error = options.savePath.isEmpty() ? QString() : plc::trySaving(options.savePath);
    return error.isEmpty() ? EXIT_SUCCESS : fail(error, EXIT_FAILURE);
}

void saveNow(const QString& path, const plc::Controller& controller)
{
    if (path.isEmpty()) {
        plc::report(QStringLiteral("nothing saved: --save FILE says where"));
        return;
    }
    const QString error = plc::saveImage(path, controller);
    plc::report(error.isEmpty() ? QStringLiteral("saved ") + path : error);
}

/// Serves until a signal or a lost link ends it. @return the exit code
int serveLinks(const plc::Options& options, plc::Controller& controller)
{
    plc::Deafness deafness(controller, options.deafMs);
    // Before the links are announced: whoever reads the announcement may send a signal at once.
    const plc::Signals signalCalls({SIGUSR1, SIGUSR2, SIGINT, SIGTERM}, [&](int number) {
        if (number == SIGUSR1)
            deafness.begin();
        else if (number == SIGUSR2)
            saveNow(options.savePath, controller);
        else
            QCoreApplication::quit();
    });

    plc::Links links(controller, [](const QString& reason) {
        QCoreApplication::exit(fail(reason, EXIT_FAILURE));
    });
    const QString error = links.open(options);
    if (!error.isEmpty())
        return fail(error, EXIT_FAILURE);

    qint64 lastMs = plc::steadyMs();
    QTimer machineTimer;
    QObject::connect(&machineTimer, &QTimer::timeout, &machineTimer, [&controller, &lastMs] {
        const qint64 nowMs = plc::steadyMs();
        plc::runMachines(controller, nowMs - lastMs);
        lastMs = nowMs;
    });
    machineTimer.start(MACHINE_INTERVAL_MS);
    int exitCode = QCoreApplication::exec();

    const QString unsaved =
        options.savePath.isEmpty() ? QString() : plc::saveImage(options.savePath, controller);
    if (!unsaved.isEmpty())
        exitCode = fail(unsaved, EXIT_FAILURE);
    plc::report(plc::summary(controller));
    return exitCode;
}
} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const plc::ParsedOptions parsed = plc::parseOptions(QCoreApplication::arguments());
    if (!parsed.error.isEmpty())
        return fail(parsed.error, EXIT_USAGE);
    if (!parsed.help.isEmpty()) {
        std::printf("%s", qUtf8Printable(parsed.help));
        return EXIT_SUCCESS;
    }
    const plc::Options& options = parsed.options;
    plc::Controller controller = plc::makeController(
        options.stations, options.remote ? plc::REMOTE_FRAMING : plc::LOCAL_FRAMING,
        options.machine);
    controller.faults = plc::makeFaultPlan(options.faults, options.seed);
    const int exitCode = prepareFiles(options, controller);
    return exitCode == EXIT_SUCCESS ? serveLinks(options, controller) : exitCode;
}
