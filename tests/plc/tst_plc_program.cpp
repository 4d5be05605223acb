// The program itself, over its links, asked by a Modbus master that is not ours.
#include "frames.h"
#include "plc/machine.h"

#include <QFileInfo>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <modbus.h>
#include <termios.h>
#include <unistd.h>

namespace
{
constexpr int WAIT_MS = 5000;
constexpr unsigned REPLY_TIMEOUT_US = 300 * 1000;
using Master = std::unique_ptr<modbus_t, decltype(&modbus_free)>;

Master connectMaster(const QByteArray& terminal, int station)
{
    Master master(modbus_new_rtu(terminal.constData(), 115200, 'N', 8, 1), &modbus_free);
    modbus_set_slave(master.get(), station);
    modbus_set_response_timeout(master.get(), 0, REPLY_TIMEOUT_US);
    if (modbus_connect(master.get()) != 0)
        qFatal("cannot open %s: %s", terminal.constData(), modbus_strerror(errno));
    return master;
}

/// The word at `address`, or -errno.
int readWord(const Master& master, int address)
{
    uint16_t value = 0;
    return modbus_read_registers(master.get(), address, 1, &value) == 1 ? value : -errno;
}

bool isRaw(const QByteArray& terminal)
{
    const int descriptor = ::open(terminal.constData(), O_RDWR | O_NOCTTY);
    termios settings = {};
    const bool known = tcgetattr(descriptor, &settings) == 0;
    ::close(descriptor);
    return known && (settings.c_lflag & (ICANON | ECHO)) == 0;
}

class Plc
{
public:
    explicit Plc(const QByteArray& options)
    {
        m_process.start(
            QLatin1String(KP410_PLC_PROGRAM),
            QString::fromLocal8Bit(options).split(QLatin1Char(' '), Qt::SkipEmptyParts));
    }
    ~Plc()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    /// The next whole line.
    QByteArray line(QProcess::ProcessChannel channel)
    {
        m_process.setReadChannel(channel);
        while (!m_process.canReadLine() && m_process.waitForReadyRead(WAIT_MS))
            ;
        return m_process.readLine().trimmed();
    }
    QByteArray announced(const char* link)
    {
        const QByteArray text = line(QProcess::StandardOutput);
        return text.startsWith(link) ? text.mid(4) : QByteArray();
    }
    QByteArray reported() { return line(QProcess::StandardError); }
    void send(int signalNumber) { ::kill(static_cast<pid_t>(m_process.processId()), signalNumber); }
    int exitCode()
    {
        m_process.waitForFinished(WAIT_MS);
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

private:
    QProcess m_process;
};
} // namespace

class ProgramTest : public QObject
{
    Q_OBJECT
private slots:
    void servesAModbusMaster()
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
        QVERIFY(words == (std::array<uint16_t, 125>{1234, 4321}));
        bits.fill(9);
        QCOMPARE(modbus_read_bits(master.get(), plc::QB_FREE * 8, 2000, bits.data()), 2000);
        QVERIFY(bits == (std::array<uint8_t, 2000>{1, 1, 0, 1}));
        // The inputs follow when the machine has made its next step.
        QTRY_VERIFY(modbus_read_input_bits(master.get(), plc::IB_FREE * 8, 8, bits.data()) == 8 &&
                    bits[3] == 1);
        QCOMPARE(int{bits[2]}, 0);

        QCOMPARE(readWord(master, plc::MEMORY_WORDS), -EMBXILADD);
        QCOMPARE(modbus_read_input_registers(master.get(), 0, 1, words.data()), -1);
        QCOMPARE(errno, EMBXILFUN);
        modbus_set_slave(master.get(), 2);
        QCOMPARE(readWord(master, 0), -ETIMEDOUT);
        plc.send(SIGINT);
        QCOMPARE(plc.exitCode(), 0);
    }

    void panelsComeAndGo()
    {
        const QTemporaryDir directory;
        const QString link = directory.filePath(QStringLiteral("line"));
        Plc plc("--pty --deaf-ms 700 --link " + link.toLocal8Bit());
        const QByteArray terminal = plc.announced("pty");
        QCOMPARE(terminal, QFileInfo(link).symLinkTarget().toLocal8Bit());
        QVERIFY(isRaw(terminal));
        for (uint16_t round = 1; round <= 3; ++round) {
            const Master master = connectMaster(link.toLocal8Bit(), 1);
            QCOMPARE(readWord(master, 1000), round - 1);
            QCOMPARE(modbus_write_register(master.get(), 1000, round), 1);
            modbus_close(master.get());
        }
        const Master master = connectMaster(terminal, 1);
        plc.send(SIGUSR1);
        QCOMPARE(plc.reported(), QByteArray("kp410-plc: deaf for 700 ms"));
        QCOMPARE(readWord(master, 1000), -ETIMEDOUT);
        QCOMPARE(readWord(master, 1000), -ETIMEDOUT);
        QCOMPARE(plc.reported(), QByteArray("kp410-plc: hears again, 2 requests swallowed"));
        QCOMPARE(readWord(master, 1000), 3);
        plc.send(SIGTERM);
        QCOMPARE(plc.exitCode(), 0);
        QCOMPARE(plc.reported(),
                 QByteArray("kp410-plc: 7 requests, 7 replies, 0 exceptions, 2 swallowed"));
        QVERIFY(!QFileInfo(link).isSymLink());
    }

    void servesTcpClients()
    {
        Plc plc("--tcp 127.0.0.1:0 --remote");
        const QUrl address(QLatin1String("//") + QString::fromLatin1(plc.announced("tcp")));
        const auto ask = [&address](QTcpSocket& client, const QByteArray& request) {
            if (client.state() == QTcpSocket::UnconnectedState)
                client.connectToHost(address.host(), static_cast<quint16>(address.port()));
            client.waitForConnected(WAIT_MS);
            client.write(request);
            client.waitForReadyRead(WAIT_MS);
            return client.readAll().toHex(' ');
        };
        const QByteArray write = bytes("07 01 01 01 0008 0000000A 0001 00000000 00000000 3412 ~");
        const QByteArray read = bytes("07 00 01 01 0008 0000000A 0001 00000000 00000000 ~");
        const QByteArray held = bytes("01 03 02 1234 +").toHex(' ');
        QTcpSocket stays;
        QCOMPARE(ask(stays, write), bytes("01 10 000A 0001 +").toHex(' '));
        {
            QTcpSocket leaves;
            QCOMPARE(ask(leaves, read), held);
            leaves.write(read.left(5));
            leaves.waitForBytesWritten(WAIT_MS);
        }
        QCOMPARE(ask(stays, read), held);
    }

    void options_data()
    {
        QTest::addColumn<int>("exitCode");
        for (const char* wrong : {"", "--pty --bogus", "--pty stray",
                                  "--tcp 127.0.0.1:0 --link /tmp/none", "--pty --stations 1,0",
                                  "--pty --stations 1,,", "--pty --deaf-ms 0", "--tcp 127.0.0.1"})
            QTest::newRow(wrong) << 2;
        for (const char* impossible : {"--pty --link /nowhere/line", "--tcp 192.0.2.1:0"})
            QTest::newRow(impossible) << 1;
        QTest::newRow("--help") << 0;
    }

    void options()
    {
        QFETCH(int, exitCode);
        Plc plc(QTest::currentDataTag());
        QCOMPARE(plc.exitCode(), exitCode);
        QCOMPARE(plc.reported().startsWith("kp410-plc: "), exitCode != 0);
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "tst_plc_program.moc"
