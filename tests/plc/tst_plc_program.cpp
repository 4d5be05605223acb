// The program itself, over its links, asked by a Modbus master that is not ours.
#include "frames.h"
#include "plc/machine.h"
#include "plc/options.h"

#include <QFileInfo>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cerrno>
#include <csignal>
#include <memory>
#include <modbus.h>

namespace
{
constexpr int WAIT_MS = 5000;
constexpr unsigned REPLY_TIMEOUT_US = 300 * 1000;
using Master = std::unique_ptr<modbus_t, decltype(&modbus_free)>;

QStringList arguments(const QByteArray& text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

Master connectMaster(const QString& terminal, int station)
{
    Master master(modbus_new_rtu(qPrintable(terminal), 115200, 'N', 8, 1), &modbus_free);
    modbus_set_slave(master.get(), station);
    modbus_set_response_timeout(master.get(), 0, REPLY_TIMEOUT_US);
    if (modbus_connect(master.get()) != 0)
        qFatal("cannot open %s: %s", qPrintable(terminal), modbus_strerror(errno));
    return master;
}

class Plc
{
public:
    explicit Plc(const QByteArray& options)
    {
        m_process.start(QStringLiteral(KP410_PLC_PROGRAM), arguments(options));
    }
    ~Plc()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    /// The next line of output after the word that begins it.
    QString announced(const char* link)
    {
        m_process.setReadChannel(QProcess::StandardOutput);
        while (!m_process.canReadLine() && m_process.waitForReadyRead(WAIT_MS))
            ;
        const QByteArray line = m_process.readLine().trimmed();
        return line.startsWith(link) ? QString::fromLatin1(line.mid(4)) : QString();
    }
    void send(int signalNumber) { ::kill(static_cast<pid_t>(m_process.processId()), signalNumber); }
    int exitCode()
    {
        m_process.waitForFinished(WAIT_MS);
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    bool waitForError(const char* text)
    {
        m_process.setReadChannel(QProcess::StandardError);
        while (!m_errors.contains(text)) {
            if (!m_process.waitForReadyRead(WAIT_MS))
                return false;
            m_errors += m_process.readAllStandardError();
        }
        return true;
    }
    QByteArray errors() { return m_errors += m_process.readAllStandardError(); }

private:
    QProcess m_process;
    QByteArray m_errors;
};
} // namespace

class ProgramTest : public QObject
{
    Q_OBJECT
private slots:
    void servesAModbusMaster();
    void survivesReopening();
    void goesDeafAndEnds();
    void servesTcpClients();
    void options_data();
    void options();
};

void ProgramTest::servesAModbusMaster()
{
    Plc plc("--pty --stations 1,9");
    const Master master = connectMaster(plc.announced("pty"), 9);
    std::array<uint16_t, 125> words = {1234, 5678};
    std::array<uint8_t, 2000> bits = {1, 1, 0, 1};
    QCOMPARE(modbus_write_registers(master.get(), 1000, 123, words.data()), 123);
    QCOMPARE(modbus_write_register(master.get(), 1001, 4321), 1);
    QCOMPARE(modbus_write_bits(master.get(), plc::QB_FREE * 8, 4, bits.data()), 4);
    words.fill(0xFFFF);
    QCOMPARE(modbus_read_registers(master.get(), 1000, 125, words.data()), 125);
    QCOMPARE(words[0], uint16_t{1234});
    QCOMPARE(words[1], uint16_t{4321});
    QCOMPARE(words[124], uint16_t{0});
    bits.fill(9);
    QCOMPARE(modbus_read_bits(master.get(), plc::QB_FREE * 8, 2000, bits.data()), 2000);
    QCOMPARE(int{bits[1]}, 1);
    QCOMPARE(int{bits[2]}, 0);
    // The inputs follow when the machine has made its next step.
    QTRY_VERIFY(modbus_read_input_bits(master.get(), plc::IB_FREE * 8, 8, bits.data()) == 8 &&
                bits[3] == 1);
    QCOMPARE(int{bits[2]}, 0);

    QCOMPARE(modbus_read_registers(master.get(), plc::MEMORY_WORDS - 1, 2, words.data()), -1);
    QCOMPARE(errno, EMBXILADD);
    QCOMPARE(modbus_read_input_registers(master.get(), 0, 1, words.data()), -1);
    QCOMPARE(errno, EMBXILFUN);
    modbus_set_slave(master.get(), 2);
    QCOMPARE(modbus_read_registers(master.get(), 0, 1, words.data()), -1);
    QCOMPARE(errno, ETIMEDOUT);
}

void ProgramTest::survivesReopening()
{
    const QTemporaryDir directory;
    const QString link = directory.filePath(QStringLiteral("line"));
    Plc plc("--pty --link " + link.toLatin1());
    const QString terminal = plc.announced("pty");
    QCOMPARE(QFileInfo(link).symLinkTarget(), terminal);
    uint16_t value = 0;
    for (uint16_t round = 1; round <= 3; ++round) {
        const Master master = connectMaster(link, 1);
        QCOMPARE(modbus_read_registers(master.get(), 1000, 1, &value), 1);
        QCOMPARE(int{value}, round - 1);
        QCOMPARE(modbus_write_register(master.get(), 1000, round), 1);
        modbus_close(master.get());
    }
    plc.send(SIGINT);
    QCOMPARE(plc.exitCode(), 0);
    QVERIFY(!QFileInfo(link).isSymLink());
}

void ProgramTest::goesDeafAndEnds()
{
    Plc plc("--pty --deaf-ms 700");
    const Master master = connectMaster(plc.announced("pty"), 1);
    uint16_t value = 0;
    QCOMPARE(modbus_read_registers(master.get(), 0, 1, &value), 1);
    plc.send(SIGUSR1);
    QVERIFY(plc.waitForError("deaf for 700 ms\n"));
    QCOMPARE(modbus_read_registers(master.get(), 0, 1, &value), -1);
    QCOMPARE(errno, ETIMEDOUT);
    QVERIFY(plc.waitForError("hears again, 1 requests swallowed\n"));
    QCOMPARE(modbus_read_registers(master.get(), 0, 1, &value), 1);
    plc.send(SIGTERM);
    QCOMPARE(plc.exitCode(), 0);
    QVERIFY2(plc.errors().endsWith("kp410-plc: 2 requests, 2 replies, 0 exceptions, 1 swallowed\n"),
             plc.errors().constData());
}

void ProgramTest::servesTcpClients()
{
    Plc plc("--tcp 127.0.0.1:0 --remote");
    const QStringList address = plc.announced("tcp").split(QLatin1Char(':'));
    QCOMPARE(address.size(), 2);
    const auto ask = [&address](QTcpSocket& client, const QByteArray& request) {
        if (client.state() == QTcpSocket::UnconnectedState)
            client.connectToHost(address.at(0), address.at(1).toUShort());
        client.waitForConnected(WAIT_MS);
        client.write(request);
        client.waitForReadyRead(WAIT_MS);
        return client.readAll().toHex(' ');
    };
    const QByteArray write = hex("18 07 01 01 01 0008 0000000A 0001 00000000 00000000 3412 7B");
    const QByteArray read = hex("16 07 00 01 01 0008 0000000A 0001 00000000 00000000 32");
    QTcpSocket stays;
    QCOMPARE(ask(stays, write), crc("01 10 000A 0001").toHex(' '));
    {
        QTcpSocket leaves;
        QCOMPARE(ask(leaves, read), crc("01 03 02 1234").toHex(' '));
        leaves.write(read.left(5));
        leaves.waitForBytesWritten(WAIT_MS);
    }
    QCOMPARE(ask(stays, read), crc("01 03 02 1234").toHex(' '));
}

void ProgramTest::options_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("no link") << QByteArray() << 2;
    QTest::newRow("unknown option") << QByteArray("--pty --bogus") << 2;
    QTest::newRow("stray argument") << QByteArray("--pty stray") << 2;
    QTest::newRow("link without terminal") << QByteArray("--tcp 127.0.0.1:0 --link /tmp/none") << 2;
    QTest::newRow("broadcast as station") << QByteArray("--pty --stations 1,0") << 2;
    QTest::newRow("no station") << QByteArray("--pty --stations 1,,") << 2;
    QTest::newRow("never deaf") << QByteArray("--pty --deaf-ms 0") << 2;
    QTest::newRow("TCP without port") << QByteArray("--tcp 127.0.0.1") << 2;
    QTest::newRow("link that cannot be made") << QByteArray("--pty --link /nowhere/line") << 1;
    QTest::newRow("TCP address that is not ours") << QByteArray("--tcp 192.0.2.1:0") << 1;
    QTest::newRow("help") << QByteArray("--help") << 0;
}

void ProgramTest::options()
{
    QFETCH(QByteArray, line);
    QFETCH(int, exitCode);
    Plc plc(line);
    QCOMPARE(plc.exitCode(), exitCode);
    QCOMPARE(plc.errors().startsWith("kp410-plc: "), exitCode != 0);
}

QTEST_GUILESS_MAIN(ProgramTest)
#include "tst_plc_program.moc"
