// The panel program, with the built driver, against the simulated controller over a
// pseudo-terminal, and over TCP against peers that misbehave on purpose.
#include "programs.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

class PanelLoop : public QObject
{
    Q_OBJECT
private slots:
    void readsAndWrites_data() { addCases(); }
    void readsAndWrites();
    void linkComesBack();
    void peerThatTakesNobody();
    void refusedUse_data() { addCases(); }
    void refusedUse();
};

void PanelLoop::readsAndWrites()
{
    const QList<QByteArray> in = given(2);
    const Plc plc(text(in[0]));
    const Run run = runPanel(
        text(in[1] + " %1 --duration 1 --write setpoint=321 --write reverse=1 --write free=5a "
                     "--write ratio=-1.5 --write high_byte=0xc3 --write special=1 TAGS")
            .arg(plc.address));
    QTEST(text("%1: %2; %3 failed")
              .arg(run.exitCode)
              .arg(capture(run, "^Callbacks: (.*)$"), capture(run, " good, (\\d+) failed")),
          "expected");
    QCOMPARE(run.output.count(text("read back as written")), 6);
    QFile tags(text(TAGS));
    QVERIFY(tags.open(QIODevice::ReadOnly));
    for (const QByteArray& line : parts(tags.readAll().trimmed(), '\n')) {
        const QByteArray tag = line.split(',')[0], valueWritten = line.split('#')[1].trimmed();
        QCOMPARE(text(tag + '=') + valueAtEnd(run, tag), text(tag + '=' + valueWritten));
    }
}

void PanelLoop::linkComesBack()
{
    // The peer closes each connection at its first request. Nothing queued is lost by that, and it
    // does not count as a failed reply: one of those would be the end of the write.
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const QString address = text("127.0.0.1:%1").arg(server.serverPort());
    QProcess panel;
    startPanel(&panel,
               text("TAGS --duration 4 --timeout 500 --retries 0 --write setpoint=99 --tcp ") +
                   address);
    for (int i = 0; i < 2; ++i) {
        QVERIFY(server.waitForNewConnection(PATIENCE_MS));
        const std::unique_ptr<QTcpSocket> peer(server.nextPendingConnection());
        QVERIFY(peer->waitForReadyRead(PATIENCE_MS));
        // The write goes first, and goes out again after each loss.
        QCOMPARE(peer->readAll().left(6).toHex(), QByteArray("010600650063"));
        peer->disconnectFromHost();
    }
    server.close();
    const Plc plc(text("--tcp ") + address);
    QCOMPARE(plc.address, address);
    const Run run = finishPanel(&panel);
    QVERIFY2(run.exitCode == 0, qPrintable(run.output));
    QCOMPARE(capture(run, "link losses: (\\d+)"), text("2"));
    QCOMPARE(capture(run, "^Callbacks: (.*)$"), text("1 finished done, 0 finished failed, 0 fail"));
    QCOMPARE(valueAtEnd(run, "setpoint"), text("99"));
}

void PanelLoop::peerThatTakesNobody()
{
    // A device server in use by someone else takes a connection and closes it.
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QObject::connect(&server, &QTcpServer::newConnection, &server,
                     [&server] { server.nextPendingConnection()->abort(); });
    QProcess panel;
    startPanel(&panel, text("--tcp 127.0.0.1:%1 --once TAGS").arg(server.serverPort()));
    QTRY_COMPARE_WITH_TIMEOUT(panel.state(), QProcess::NotRunning, PATIENCE_MS);
    QCOMPARE(finishPanel(&panel).exitCode, 4);
}

void PanelLoop::refusedUse()
{
    const Run run = runPanel(text(given(1)[0]));
    QCOMPARE(run.exitCode, 1);
    verifyContains(run.output);
}

QTEST_GUILESS_MAIN(PanelLoop)
#include "tst_panel_loop.moc"
