// The controller as a Modbus client finds it that is neither ours nor made for it.
#include "panel/cases.h"
#include "plc_process.h"

#include <QTemporaryDir>

namespace
{
/// What the client says about one poll, on both channels, each line's spaces made one.
QString poll(const QByteArray& terminal, const QByteArray& arguments)
{
    QProcess client;
    client.setProcessChannelMode(QProcess::MergedChannels);
    client.start(text(MBPOLL_PROGRAM),
                 text("-m rtu -b 19200 -P none -a 1 -0 -1 -v -o 2 " + arguments)
                     .replace(text("LINE"), text(terminal))
                     .split(QLatin1Char(' ')));
    client.waitForFinished(WAIT_MS);
    return text(client.readAll()).simplified();
}
} // namespace

class MbpollTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_saved = m_directory.filePath(text("saved"));
        m_plc = std::make_unique<Plc>("--pty --no-machine --load " IMAGE " --save " +
                                      m_saved.toLocal8Bit());
        m_terminal = m_plc->announced("pty");
        QVERIFY(!m_terminal.isEmpty());
    }

    /// In the order of the file: what one writes another reads.
    void polls_data() { addCases(); }
    void polls()
    {
        const QString said = poll(m_terminal, given(1)[0]);
        QFETCH(QString, expected);
        for (const QString& part : expected.split(QStringLiteral(" & ")))
            QVERIFY2(said.contains(part), qPrintable(said));
    }

    void memoryIsAsWritten()
    {
        m_plc->send(SIGUSR2);
        QCOMPARE(m_plc->reported(), "kp410-plc: saved " + m_saved.toLocal8Bit());
        QFile file(m_saved);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(
            file.readAll().split('\n').mid(1),
            (QList<QByteArray>{"1 input 4 = 1 0 1 1", "1 output 3 = 1 1 0 1", "1 memory 20 = 4660",
                               "1 memory 30 = 1 2 65535", "1 memory 100 = 200 500 16", ""}));
    }

private:
    QTemporaryDir m_directory;
    QString m_saved;
    QByteArray m_terminal;
    std::unique_ptr<Plc> m_plc;
};

QTEST_GUILESS_MAIN(MbpollTest)
#include "tst_plc_mbpoll.moc"
