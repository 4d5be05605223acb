// One of eight stations is dead: the others are scanned as if it were not there.
#include "programs.h"

#include <csignal>

class PanelStations : public QObject
{
    Q_OBJECT
private slots:
    void oneOfEightIsDead();
    void anExceptionIsAnAnswer();
    void aStationComesBack();
};

namespace
{

constexpr double TIMEOUT_S = 0.1;

QByteArray tagFile(const QTemporaryDir& directory, int withoutStation)
{
    QFile file(directory.filePath(text("stations.csv")));
    file.open(QIODevice::WriteOnly);
    for (int station = 1; station <= 8; ++station)
        if (station != withoutStation)
            file.write(QByteArray("level" + QByteArray::number(station) + ",MW100,,1," +
                                  QByteArray::number(station) + '\n'));
    return file.fileName().toLocal8Bit();
}

/// Seconds between the requests to station 1, from the trace.
QVector<double> scanTimes(const Run& run)
{
    const QRegularExpression request(text("^ *([0-9.]+) > 01 "),
                                     QRegularExpression::MultilineOption);
    QVector<double> times;
    double last = -1;
    for (auto it = request.globalMatch(run.output); it.hasNext();) {
        const double at = it.next().captured(1).toDouble();
        if (last >= 0)
            times << at - last;
        last = at;
    }
    return times;
}

double median(QVector<double> times)
{
    std::sort(times.begin(), times.end());
    return times.value(times.size() / 2);
}

Run runStations(const Plc& plc, int withoutStation, const char* options)
{
    const QTemporaryDir directory;
    QProcess panel;
    startPanel(&panel, text("--serial %1 --trace %2 TAGS").arg(plc.address, text(options)),
               tagFile(directory, withoutStation));
    return finishPanel(&panel);
}

} // namespace

void PanelStations::oneOfEightIsDead()
{
    const Plc plc(text("--pty --stations 1,2,3,4,6,7,8"));
    const QVector<double> without = scanTimes(runStations(plc, 5, "--duration 2"));
    const Run run = runStations(plc, 0, "--duration 6 --fails 2 --retries 1");
    QVERIFY(run.output.contains(text("station 5 switched off, probed again in 0.50 s")));

    // Two reads of the dead station are given up before it is switched off, then each probe is one
    // request: at 0.5 s, 1 s, 2 s.  Each delays one scan, no other is slower than without it.
    const int givenUp = capture(run, "finished failed, (\\d+) fail").toInt();
    QVERIFY2(givenUp >= 4 && givenUp <= 6, qPrintable(run.output));
    QCOMPARE(capture(run, "^Station 5: (\\d+) turns").toInt(), 2 * 2 + (givenUp - 2));
    QVector<double> slow, quick;
    for (const double time : scanTimes(run))
        (time > TIMEOUT_S ? slow : quick) << time;
    QCOMPARE(slow.size(), givenUp);
    QVERIFY2(median(quick) < 1.25 * median(without),
             qPrintable(text("%1 against %2").arg(median(quick)).arg(median(without))));
}

void PanelStations::anExceptionIsAnAnswer()
{
    // Station 1 has no such address: its other tag goes on being read.
    const QTemporaryDir directory;
    QFile file(directory.filePath(text("one_bad.csv")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("good,MW100\nbad,MW60000\n");
    file.close();
    const Plc plc(text("--pty"));
    QProcess panel;
    startPanel(&panel, text("--serial %1 --duration 2 --retries 0 --fails 1 TAGS").arg(plc.address),
               file.fileName().toLocal8Bit());
    const Run run = finishPanel(&panel);
    QCOMPARE(run.exitCode, 3);
    QVERIFY(!run.output.contains(text("switched off")));
    QVERIFY(capture(run, "finished failed, (\\d+) fail").toInt() > 10);
    QVERIFY2(!capture(run, "^  (good +MW100 .* good )").isEmpty(), qPrintable(run.output));
}

void PanelStations::aStationComesBack()
{
    const QTemporaryDir directory;
    const Plc plc(text("--pty --stations 1,2 --deaf-ms 1500"));
    QProcess panel;
    startPanel(&panel,
               text("--serial %1 --duration 6 --retries 0 --fails 1 --write-at 1.6:setpoint_2=61 "
                    "--write-at 1.6:setpoint=44 --write-at 1.6:setpoint_2=62 TAGS")
                   .arg(plc.address));
    QByteArray seen;
    const auto sees = [&](const char* wanted) {
        return (seen += panel.readAll()).contains(wanted);
    };
    QTRY_VERIFY2_WITH_TIMEOUT(sees("1 good"), seen, PATIENCE_MS);
    QCOMPARE(::kill(static_cast<pid_t>(plc.process.processId()), SIGUSR1), 0);
    Run run = finishPanel(&panel);
    run.output.prepend(text(seen));
    for (const char* wanted : {"station 1 switched off", "station 2 switched off",
                               "station 1 answers again", "station 2 answers again"})
        QVERIFY2(run.output.contains(text(wanted)), qPrintable(run.output));
    // Writes to a station that is off wait for it and keep their order.
    QVERIFY2(run.exitCode == 0, qPrintable(run.output));
    QCOMPARE(capture(run, "^Callbacks: (\\d+ finished done, \\d+ finished failed)"),
             text("3 finished done, 0 finished failed"));
    QCOMPARE(valueAtEnd(run, "setpoint"), text("44"));
    QCOMPARE(valueAtEnd(run, "setpoint_2"), text("62"));
}

QTEST_GUILESS_MAIN(PanelStations)
#include "tst_panel_stations.moc"
