// The panel program, with the built driver, against the simulated controller over a
// pseudo-terminal, and over TCP against peers that misbehave on purpose.
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <csignal>
#include <memory>

class PanelLoop : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void readsAndWrites_data();
    void readsAndWrites();
    void deafControllerComesBack();
    void deadStation_data();
    void deadStation();
    void lateRepliesAreNotMixedUp();
    void linkComesBack();
    void refusedUse_data();
    void refusedUse();

private:
    QTemporaryDir m_directory;
    QString m_tags;
};

namespace
{

constexpr int PATIENCE_MS = 20000;

QString text(const char* latin1)
{
    return QString::fromLatin1(latin1);
}

struct Plc {
    QProcess process;
    QString address; ///< of the link that it printed

    ~Plc()
    {
        process.terminate();
        process.waitForFinished(PATIENCE_MS);
    }
};

std::unique_ptr<Plc> startPlc(const QStringList& arguments)
{
    auto plc = std::make_unique<Plc>();
    plc->process.start(text(PLC_PROGRAM), arguments);
    if (plc->process.waitForReadyRead(PATIENCE_MS))
        plc->address =
            QString::fromLatin1(plc->process.readLine()).section(QLatin1Char(' '), 1).trimmed();
    return plc;
}

struct Run {
    int exitCode = -1;
    QString output, errors;
};

void startPanel(QProcess* panel, const QStringList& arguments)
{
    panel->start(text(PANEL_PROGRAM), QStringList{text("--library"), text(DRIVER_LIBRARY),
                                                  text("--timeout"), text("100")} +
                                          arguments);
}

Run finishPanel(QProcess* panel)
{
    Run run;
    if (panel->waitForFinished(PATIENCE_MS) && panel->exitStatus() == QProcess::NormalExit)
        run.exitCode = panel->exitCode();
    run.output = QString::fromUtf8(panel->readAllStandardOutput());
    run.errors = QString::fromUtf8(panel->readAllStandardError());
    return run;
}

/// What `pattern` captured in the output, null when it does not occur.
QString capture(const Run& run, const char* pattern)
{
    const QRegularExpression expression(text(pattern), QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = expression.match(run.output);
    return match.hasMatch() ? match.captured(1) : QString();
}

/// The value that the summary gives a tag.
QString valueAtEnd(const Run& run, const char* tag)
{
    const QByteArray pattern = QByteArray("^  ") + tag + " +\\w+ [0-9.]+ @\\d+ +(\\S+) ";
    return capture(run, pattern.constData());
}

/// The reply to a read of one memory word whose value is its address, in the way of the serial
/// line.
QByteArray addressAsValue(const QByteArray& request)
{
    static const auto crc =
        reinterpret_cast<unsigned short (*)(const unsigned char*, unsigned short)>(
            QLibrary::resolve(text(DRIVER_LIBRARY), "CalCRC"));
    QByteArray reply = request.left(2) + '\x02' + request.mid(2, 2);
    const unsigned sum = crc(reinterpret_cast<const unsigned char*>(reply.constData()),
                             static_cast<unsigned short>(reply.size()));
    return reply + static_cast<char>(sum & 0xFF) + static_cast<char>(sum >> 8);
}

bool waitForLine(QProcess* panel, const char* wanted, QByteArray* seen)
{
    const QDeadlineTimer deadline(PATIENCE_MS);
    while (!seen->contains(wanted) && !deadline.hasExpired()) {
        panel->waitForReadyRead(100);
        *seen += panel->readAllStandardOutput();
    }
    return seen->contains(wanted);
}

} // namespace

void PanelLoop::initTestCase()
{
    m_tags = m_directory.filePath(text("tags.csv"));
    QFile file(m_tags);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("setpoint,MEMORY_WORD,101,1,1,\n"
               "enable,MEMORY_BIT,212.0,1,1,\n"
               "reverse,MEMORY_BIT,212.1,1,1,\n"
               "control,MEMORY_WORD,106,1,1,hex\n"
               "free,OUTPUT_BYTE,2,1,1,hex\n"
               "mirror,INPUT_BYTE,2,1,1,hex\n"
               "ratio,MEMORY_DWORD,100,2,1,float32\n"
               "ratio_high,MEMORY_WORD,201,1,1,hex\n"
               "high_byte,MEMORY_BYTE,421,1,1,hex\n"
               "its_word,MEMORY_WORD,210,1,1,hex\n"
               "special,SPECIAL_BIT,40,1,1,\n"
               "number,SPECIAL_WORD,1,1,1,\n"
               "number_2,SPECIAL_WORD,1,1,2,\n"
               "setpoint_2,MEMORY_WORD,101,1,2,\n");
}

void PanelLoop::readsAndWrites_data()
{
    QTest::addColumn<QStringList>("plcOptions");
    QTest::addColumn<QStringList>("panelOptions");
    QTest::newRow("pseudo-terminal") << QStringList{text("--pty")} << QStringList{text("--serial")};
    QTest::newRow("TCP") << QStringList{text("--tcp"), text("127.0.0.1:0")}
                         << QStringList{text("--tcp")};
    QTest::newRow("pseudo-terminal, remote framing")
        << QStringList{text("--pty"), text("--remote")}
        << QStringList{text("--remote"), text("--serial")};
}

void PanelLoop::readsAndWrites()
{
    QFETCH(QStringList, plcOptions);
    QFETCH(QStringList, panelOptions);
    const auto plc = startPlc(plcOptions);
    QVERIFY(!plc->address.isEmpty());
    const QStringList writes = {text("setpoint=321"), text("reverse=1"),      text("free=5a"),
                                text("ratio=-1.5"),   text("high_byte=0xc3"), text("special=1")};
    QStringList arguments = panelOptions + QStringList{plc->address, text("--duration"), text("1")};
    for (const QString& write : writes)
        arguments << text("--write") << write;
    QProcess panel;
    startPanel(&panel, arguments << m_tags);
    const Run run = finishPanel(&panel);
    QVERIFY2(run.exitCode == 0, qPrintable(run.output + run.errors));

    // The values come from the controller: each write is seen through another tag as well.
    const QList<QPair<const char*, const char*>> expected = {
        {"setpoint", "321"},   {"enable", "1"},        {"reverse", "1"},  {"control", "0x0003"},
        {"free", "0x5a"},      {"mirror", "0x5a"},     {"ratio", "-1.5"}, {"ratio_high", "0xbfc0"},
        {"high_byte", "0xc3"}, {"its_word", "0xc300"}, {"special", "1"},  {"number", "1"},
        {"number_2", "2"}};
    for (const auto& [tag, value] : expected)
        QCOMPARE(qMakePair(text(tag), valueAtEnd(run, tag)), qMakePair(text(tag), text(value)));
    QCOMPARE(run.output.count(text("read back as written")), writes.size());
    QCOMPARE(capture(run, "^(Callbacks: .*)$"),
             text("Callbacks: 6 finished done, 0 finished failed, 0 fail"));
    QCOMPARE(capture(run, " good replies, (\\d+) failed"), text("0"));
}

void PanelLoop::deafControllerComesBack()
{
    const auto plc = startPlc({text("--pty"), text("--deaf-ms"), text("1000")});
    QProcess panel;
    startPanel(&panel, {text("--serial"), plc->address, text("--duration"), text("4"),
                        text("--write-at"), text("3:setpoint=77"), m_tags});
    QByteArray seen;
    QVERIFY(waitForLine(&panel, "1 good", &seen));
    QCOMPARE(::kill(static_cast<pid_t>(plc->process.processId()), SIGUSR1), 0);
    QVERIFY2(waitForLine(&panel, "does not answer", &seen), seen.constData());
    QVERIFY2(waitForLine(&panel, "(stale)", &seen), seen.constData());
    QVERIFY2(waitForLine(&panel, "fail callback: ", &seen), seen.constData());
    QVERIFY2(waitForLine(&panel, "answers again", &seen), seen.constData());
    const Run run = finishPanel(&panel);
    QVERIFY2(run.exitCode == 0, qPrintable(run.output));
    QCOMPARE(valueAtEnd(run, "setpoint"), text("77"));
    QVERIFY(capture(run, "finished failed, (\\d+) fail").toInt() >= 1);
    QVERIFY(capture(run, "^  result +41: (\\d+) \\(no reply\\)").toInt() >= 1);
    QCOMPARE(capture(run, "Stale bytes discarded: (\\d+);"), text("0"));
}

void PanelLoop::deadStation_data()
{
    QTest::addColumn<QString>("write");
    QTest::addColumn<QString>("ending");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("write to the live station") << text("setpoint=5") << text("done") << 3;
    QTest::newRow("write to the dead station") << text("setpoint_2=5") << text("failed") << 2;
}

void PanelLoop::deadStation()
{
    // Station 2 is not there: its tags have no value, those of station 1 have.
    QFETCH(QString, write);
    QFETCH(QString, ending);
    const auto plc = startPlc({text("--pty"), text("--stations"), text("1")});
    QProcess panel;
    startPanel(&panel, {text("--serial"), plc->address, text("--duration"), text("2"),
                        text("--retries"), text("0"), text("--write"), write, m_tags});
    const Run run = finishPanel(&panel);
    QTEST(run.exitCode, "exitCode");
    QCOMPARE(valueAtEnd(run, "number_2"), text("-"));
    QCOMPARE(valueAtEnd(run, "number"), text("1"));
    QVERIFY2(run.output.contains(text("\n  %1 %2").arg(write, ending)), qPrintable(run.output));
    QCOMPARE(capture(run, "^  number_2 .*  (no answer)$"), text("no answer"));
}

void PanelLoop::lateRepliesAreNotMixedUp()
{
    // Every reply comes half a time-out late. The first try's reply arrives during the second, the
    // second's while the next variable would be waiting for its own, of the same shape.
    const QString tags = m_directory.filePath(text("two.csv"));
    QFile file(tags);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("low,MEMORY_WORD,7,1,1,\nhigh,MEMORY_WORD,1007,1,1,\n");
    file.close();

    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&server] {
        QTcpSocket* peer = server.nextPendingConnection();
        QObject::connect(peer, &QTcpSocket::readyRead, peer, [peer] {
            const QByteArray reply = addressAsValue(peer->readAll());
            QTimer::singleShot(150, peer, [peer, reply] { peer->write(reply); });
        });
    });
    QProcess panel;
    QEventLoop untilFinished;
    QObject::connect(&panel, &QProcess::stateChanged, &untilFinished,
                     [&](QProcess::ProcessState state) {
                         if (state == QProcess::NotRunning)
                             untilFinished.quit();
                     });
    QTimer::singleShot(PATIENCE_MS, &untilFinished, &QEventLoop::quit);
    startPanel(&panel, {text("--tcp"), text("127.0.0.1:%1").arg(server.serverPort()),
                        text("--duration"), text("3"), tags});
    untilFinished.exec();
    const Run run = finishPanel(&panel);
    QVERIFY2(run.output.contains(text("low=7")), qPrintable(run.output));
    QVERIFY2(run.output.contains(text("high=1007")), qPrintable(run.output));
    QVERIFY2(!run.output.contains(text("low=1007")), qPrintable(run.output));
    QVERIFY2(!run.output.contains(QRegularExpression(text("high=7\\b"))), qPrintable(run.output));
    QVERIFY(capture(run, "Stale bytes discarded: (\\d+);").toInt() > 0);
}

void PanelLoop::linkComesBack()
{
    // The peer closes each connection at its first request. Nothing queued is lost by that, and it
    // does not count as a failed reply: one of those would be the end of the write.
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const QString address = text("127.0.0.1:%1").arg(server.serverPort());
    QProcess panel;
    startPanel(&panel, {text("--tcp"), address, text("--duration"), text("4"), text("--timeout"),
                        text("500"), text("--retries"), text("0"), text("--write"),
                        text("setpoint=99"), m_tags});
    for (int i = 0; i < 2; ++i) {
        QVERIFY(server.waitForNewConnection(PATIENCE_MS));
        const std::unique_ptr<QTcpSocket> peer(server.nextPendingConnection());
        QVERIFY(peer->waitForReadyRead(PATIENCE_MS));
        // The write goes first, and goes out again after each loss.
        QCOMPARE(peer->readAll().left(6).toHex(), QByteArray("010600650063"));
        peer->disconnectFromHost();
    }
    server.close();
    const auto plc = startPlc({text("--tcp"), address});
    QCOMPARE(plc->address, address);
    const Run run = finishPanel(&panel);
    QVERIFY2(run.exitCode == 0, qPrintable(run.output + run.errors));
    QCOMPARE(capture(run, "link losses: (\\d+)"), text("2"));
    QCOMPARE(capture(run, "^(Callbacks: .*)$"),
             text("Callbacks: 1 finished done, 0 finished failed, 0 fail"));
    QCOMPARE(valueAtEnd(run, "setpoint"), text("99"));
}

void PanelLoop::refusedUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char* arguments, const char* complaint) {
        QTest::newRow(arguments) << text(arguments).split(QLatin1Char(' ')) << text(complaint);
    };
    row("--serial /dev/null", "one tag file is needed");
    row("TAGS", "one of --serial and --tcp is needed");
    row("--serial x --tcp h:1 TAGS", "one of --serial and --tcp is needed");
    row("--tcp h TAGS", "HOST:PORT");
    row("--tcp h:65536 TAGS", "HOST:PORT");
    row("--serial x --parity M TAGS", "N, E or O");
    row("--serial x --baud fast TAGS", "--baud takes 300 to 4000000, not 'fast'");
    row("--serial x --retries -1 TAGS", "--retries takes 0 to 100");
    row("--serial x --write setpoint=65536 TAGS", "outside 0 to 65535");
    row("--serial x --write number=1 TAGS", "SPECIAL_WORD cannot be written");
    row("--serial x --library /dev/null TAGS", "/dev/null");
    row("--serial x --library libc.so.6 TAGS", "the library lacks SetComInfo, ");
}

void PanelLoop::refusedUse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    arguments.replaceInStrings(text("TAGS"), m_tags);
    QProcess panel;
    startPanel(&panel, arguments);
    const Run run = finishPanel(&panel);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains(complaint), qPrintable(run.errors));
}

QTEST_GUILESS_MAIN(PanelLoop)
#include "tst_panel_loop.moc"
