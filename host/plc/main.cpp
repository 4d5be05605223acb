#include "link_pty.h"
#include "link_tcp.h"
#include "options.h"
#include "signals.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>

namespace
{
constexpr int EXIT_USAGE = 2;
constexpr int MACHINE_INTERVAL_MS = 20;
constexpr const char* PROGRAM = "kp410-plc";

int fail(const QString& message, int exitCode)
{
    std::fprintf(stderr, "%s: %s\n", PROGRAM, qUtf8Printable(message));
    return exitCode;
}

void printSummary(const plc::Counters& counters)
{
    std::fprintf(stderr, "%s: %lld requests, %lld replies, %lld exceptions, %lld swallowed\n",
                 PROGRAM, counters.requests, counters.replies, counters.exceptions,
                 counters.swallowed);
}

QString bracketed(const QString& host)
{
    return host.contains(QLatin1Char(':')) ? QLatin1Char('[') + host + QLatin1Char(']') : host;
}

/// Opens the links asked for and announces them. @return what went wrong
QString openLinks(const plc::Options& options, plc::PtyLink& pty, plc::TcpLink& tcp)
{
    if (options.pty) {
        const QString error = pty.open(options.linkPath);
        if (!error.isEmpty())
            return error;
        std::printf("pty %s\n", qUtf8Printable(pty.name()));
    }
    if (!options.tcpHost.isEmpty()) {
        const QString error = tcp.open(options.tcpHost, options.tcpPort);
        if (!error.isEmpty())
            return error;
        std::printf("tcp %s:%d\n", qUtf8Printable(bracketed(options.tcpHost)), int{tcp.port()});
    }
    std::fflush(stdout);
    return {};
}

/// Restarted by every signal: the last one decides when the controller hears again.
class Deafness
{
public:
    Deafness(plc::Controller& controller, int lengthMs)
        : m_controller(controller), m_lengthMs(lengthMs)
    {
        m_end.setSingleShot(true);
        m_end.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_end, &QTimer::timeout, &m_end, [this] {
            std::fprintf(stderr, "%s: hears again, %lld requests swallowed\n", PROGRAM,
                         m_controller.counters.swallowed - m_swallowedBefore);
        });
    }

    void begin()
    {
        m_controller.deafUntilMs = plc::steadyMs() + m_lengthMs;
        m_swallowedBefore = m_controller.counters.swallowed;
        m_end.start(m_lengthMs);
        std::fprintf(stderr, "%s: deaf for %d ms\n", PROGRAM, m_lengthMs);
    }

private:
    plc::Controller& m_controller;
    int m_lengthMs;
    qint64 m_swallowedBefore = 0;
    QTimer m_end;
};
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
        options.stations, options.remote ? plc::REMOTE_FRAMING : plc::LOCAL_FRAMING);
    Deafness deafness(controller, options.deafMs);
    // Before the links are announced: whoever reads the announcement may send a signal at once.
    const plc::Signals signalCalls({SIGUSR1, SIGINT, SIGTERM}, [&deafness](int number) {
        if (number == SIGUSR1)
            deafness.begin();
        else
            QCoreApplication::quit();
    });

    plc::PtyLink pty(controller);
    plc::TcpLink tcp(controller);
    const QString error = openLinks(options, pty, tcp);
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

    QCoreApplication::exec();
    printSummary(controller.counters);
    return EXIT_SUCCESS;
}
