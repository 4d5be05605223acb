// The link cut again and again under load: every write ends once, and the values are right.
#include "programs.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

class PanelCuts : public QObject
{
    Q_OBJECT
private slots:
    void tenCutsOfTheConnection();
    void theDeviceComesBack();
};

namespace
{

constexpr int CUTS = 10;
constexpr int WRITES = 90;
constexpr int WRITTEN_WORDS = 30; // tags word0 to word29; each is written three times
constexpr quint32 SEED = 20;

/// Carries bytes between the panel and the controller, and cuts both off after a number of bytes
/// that comes from a seed: in a request, in a reply, or between.
class Cable
{
public:
    explicit Cable(quint16 controllerPort) : m_controllerPort(controllerPort)
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { connect(); });
    }
    quint16 port() const { return m_server.serverPort(); }
    int cuts() const { return m_cuts; }

private:
    void connect()
    {
        m_panel.reset(m_server.nextPendingConnection());
        m_controller = std::make_unique<QTcpSocket>();
        m_controller->connectToHost(QHostAddress::LocalHost, m_controllerPort);
        m_controller->waitForConnected(PATIENCE_MS);
        m_left = m_cuts < CUTS ? 200 + int(m_random.bounded(400)) : -1;
        carry(m_panel.get(), m_controller.get());
        carry(m_controller.get(), m_panel.get());
    }
    void carry(QTcpSocket* from, QTcpSocket* to)
    {
        QObject::connect(from, &QTcpSocket::readyRead, from, [this, from, to] {
            const QByteArray bytes = from->readAll();
            const int carried = m_left < 0 ? bytes.size() : qMin(m_left, bytes.size());
            to->write(bytes.left(carried));
            to->flush();
            if (m_left < 0)
                return;
            m_left -= carried;
            if (m_left == 0)
                cut();
        });
    }
    void cut()
    {
        ++m_cuts;
        m_left = -1;
        for (QTcpSocket* end : {m_panel.get(), m_controller.get()}) {
            end->disconnect();
            end->disconnectFromHost();
        }
    }

    QTcpServer m_server;
    quint16 m_controllerPort;
    std::unique_ptr<QTcpSocket> m_panel, m_controller;
    QRandomGenerator m_random{SEED};
    int m_left = -1;
    int m_cuts = 0;
};

int writtenValue(int write)
{
    return 1000 + write;
}

/// Writes spread over five seconds.
QString writeOptions()
{
    QString options;
    for (int i = 0; i < WRITES; ++i)
        options += text(" --write-at %1:word%2=%3")
                       .arg(0.2 + 5.0 * i / WRITES)
                       .arg(i % WRITTEN_WORDS)
                       .arg(writtenValue(i));
    return options;
}

QByteArray tagFile(const QTemporaryDir& directory)
{
    QFile file(directory.filePath(text("words.csv")));
    file.open(QIODevice::WriteOnly);
    for (int i = 0; i < WRITTEN_WORDS; ++i)
        file.write(QByteArray("word" + QByteArray::number(i) + ",MW" +
                              QByteArray::number(1000 + 3 * i) + '\n'));
    return file.fileName().toLocal8Bit();
}

} // namespace

void PanelCuts::tenCutsOfTheConnection()
{
    const QTemporaryDir directory;
    const Plc plc(text("--tcp 127.0.0.1:0"));
    Cable cable(static_cast<quint16>(plc.address.section(QLatin1Char(':'), -1).toInt()));
    QProcess panel;
    startPanel(&panel,
               text("--tcp 127.0.0.1:%1 --block 2 --duration 10 TAGS").arg(cable.port()) +
                   writeOptions(),
               tagFile(directory));
    QTRY_COMPARE_WITH_TIMEOUT(panel.state(), QProcess::NotRunning, PATIENCE_MS);
    const Run run = finishPanel(&panel);
    QVERIFY2(run.exitCode == 0, qPrintable(run.output));
    QCOMPARE(cable.cuts(), CUTS);
    QCOMPARE(capture(run, "link losses: (\\d+)").toInt(), CUTS);

    QCOMPARE(capture(run, "^Callbacks: (\\d+) finished done, 0 finished failed").toInt(), WRITES);
    for (int i = 0; i < WRITES; ++i) {
        const QString write = text("word%1=%2").arg(i % WRITTEN_WORDS).arg(writtenValue(i));
        const QRegularExpression end(text("  write %1 (done|failed)").arg(write));
        QVERIFY2(run.output.count(end) == 1, qPrintable(write));
    }
    for (int i = 0; i < WRITTEN_WORDS; ++i)
        QCOMPARE(valueAtEnd(run, "word" + QByteArray::number(i)).toInt(),
                 writtenValue(WRITES - WRITTEN_WORDS + i));
}

void PanelCuts::theDeviceComesBack()
{
    const QTemporaryDir directory;
    const QString device = directory.filePath(text("line"));
    auto plc = std::make_unique<Plc>(text("--pty --link ") + device);
    QProcess panel;
    startPanel(&panel, text("--serial %1 --duration 5 --write-at 2:setpoint=66 TAGS").arg(device));
    QByteArray seen;
    const auto sees = [&](const char* wanted) {
        return (seen += panel.readAll()).contains(wanted);
    };
    QTRY_VERIFY2_WITH_TIMEOUT(sees("1 good"), seen, PATIENCE_MS);
    plc.reset();
    for (const char* wanted : {"lost: the device is gone", "cannot open", "setpoint=66 queued"})
        QTRY_VERIFY2_WITH_TIMEOUT(sees(wanted), seen, PATIENCE_MS);
    plc = std::make_unique<Plc>(text("--pty --link ") + device);
    Run run = finishPanel(&panel);
    run.output.prepend(text(seen));
    QVERIFY2(run.exitCode == 0, qPrintable(run.output));
    QCOMPARE(capture(run, "^Callbacks: (.*)$"), text("1 finished done, 0 finished failed, 0 fail"));
    QCOMPARE(valueAtEnd(run, "setpoint"), text("66"));
}

QTEST_GUILESS_MAIN(PanelCuts)
#include "tst_panel_cuts.moc"
