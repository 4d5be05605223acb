// The program itself, over its links, asked by a Modbus master that is not ours.
#include "frames.h"
#include "plc/machine.h"
#include "plc_links.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace
{
bool isRaw(const QByteArray& terminal)
{
    const int descriptor = ::open(terminal.constData(), O_RDWR | O_NOCTTY);
    termios settings = {};
    const bool known = tcgetattr(descriptor, &settings) == 0;
    ::close(descriptor);
    return known && (settings.c_lflag & (ICANON | ECHO)) == 0;
}
} // namespace

class ProgramTest : public QObject
{
    Q_OBJECT
private slots:
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
        const QByteArray address = plc.announced("tcp");
        const QByteArray write = bytes("07 01 01 01 0008 0000000A 0001 00000000 00000000 3412 ~");
        const QByteArray read = bytes("07 00 01 01 0008 0000000A 0001 00000000 00000000 ~");
        const QByteArray held = bytes("01 03 02 1234 +").toHex(' ');
        Client stays(address);
        stays.ask(write);
        QCOMPARE(stays.take(8), bytes("01 10 000A 0001 +").toHex(' '));
        {
            Client leaves(address);
            leaves.ask(read);
            QCOMPARE(leaves.take(7), held);
            leaves.ask(read.left(5));
        }
        stays.ask(read);
        QCOMPARE(stays.take(7), held);
    }

    void servesASerialPort()
    {
        const Terminal line;
        Plc plc("--serial " + line.name() + " --parity N --tcp 127.0.0.1:0");
        Client client(plc.announced("tcp"));
        QCOMPARE(plc.announced("serial"), line.name());
        line.write(bytes("01 06 03E8 1234 +"));
        QCOMPARE(line.read(8), bytes("01 06 03E8 1234 +").toHex(' '));
        client.ask(bytes("01 03 03E8 0001 +"));
        QCOMPARE(client.take(7), bytes("01 03 02 1234 +").toHex(' '));
    }

    void aLostSerialPortEndsIt()
    {
        auto line = std::make_unique<Terminal>();
        const QByteArray name = line->name();
        Plc plc("--serial " + name);
        QCOMPARE(plc.announced("serial"), name);
        line.reset();
        QCOMPARE(plc.exitCode(), 1);
        QCOMPARE(plc.reported(), "kp410-plc: " + name + " is lost");
    }

    void memoryOutlivesTheProgram()
    {
        const QTemporaryDir directory;
        const QByteArray path = directory.filePath(QStringLiteral("image")).toLocal8Bit();
        const auto saved = [&path] {
            QFile file(QString::fromLocal8Bit(path));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("not readable");
        };
        {
            Plc plc("--pty --no-machine --save " + path);
            const Master master = connectMaster(plc.announced("pty"), 2);
            QCOMPARE(modbus_write_register(master.get(), 101, 700), 1);
            plc.send(SIGUSR2);
            QCOMPARE(plc.reported(), "kp410-plc: saved " + path);
            QVERIFY(saved().endsWith("\n2 memory 101 = 700\n"));
            QCOMPARE(modbus_write_register(master.get(), 101, 701), 1);
            plc.send(SIGINT);
            QCOMPARE(plc.exitCode(), 0);
            QVERIFY(saved().endsWith("\n2 memory 101 = 701\n"));
        }
        // The machine keeps what it does not write itself, here the setpoint.
        Plc plc("--pty --load " + path);
        const Master master = connectMaster(plc.announced("pty"), 2);
        QCOMPARE(readWord(master, plc::MW_SETPOINT), 701);
        QTRY_VERIFY(readWord(master, plc::MW_CYCLES) > 0);
        plc.send(SIGUSR2);
        QCOMPARE(plc.reported(), QByteArray("kp410-plc: nothing saved: --save FILE says where"));
    }

    void unsavedMemoryIsAFailure()
    {
        QTemporaryDir directory;
        const QByteArray path = directory.filePath(QStringLiteral("image")).toLocal8Bit();
        Plc plc("--pty --save " + path);
        QVERIFY(!plc.announced("pty").isEmpty());
        QVERIFY(directory.remove());
        plc.send(SIGTERM);
        QCOMPARE(plc.exitCode(), 1);
        QVERIFY(plc.reported().startsWith("kp410-plc: cannot save " + path + ": "));
    }

    void wrongImagesEndIt()
    {
        const QTemporaryDir directory;
        QFile file(directory.filePath(QStringLiteral("image")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("1 memory 1 = x\n\n9 input 1 = 1\n"));
        file.close();
        const QByteArray path = file.fileName().toLocal8Bit();
        Plc plc("--pty --load " + path);
        QCOMPARE(plc.exitCode(), 2);
        QVERIFY(plc.reported().startsWith("kp410-plc: " + path + ":1:14: expected a word, "));
        QVERIFY(plc.reported().startsWith("kp410-plc: " + path + ":3:1: expected a station, "));
        QCOMPARE(plc.announced("pty"), QByteArray());
    }

    void options_data()
    {
        QTest::addColumn<int>("exitCode");
        for (const char* wrong :
             {"", "--pty --bogus", "--pty stray", "--tcp 127.0.0.1:0 --link /nowhere/line",
              "--pty --stations 1,0", "--pty --stations 1,,", "--pty --deaf-ms 0",
              "--tcp 127.0.0.1", "--pty --baud 9600", "--serial /dev/null --baud 49",
              "--serial /dev/null --parity e", "--serial /dev/null --stop 3", "--pty --seed -1",
              "--pty --fault crcc@1", "--pty --fault crc@1=3", "--pty --load="})
            QTest::newRow(wrong) << 2;
        for (const char* impossible :
             {"--pty --link /nowhere/line", "--tcp 192.0.2.1:0", "--serial /nowhere",
              "--serial /dev/null", "--pty --load /nowhere/image", "--pty --save /nowhere/image"})
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
