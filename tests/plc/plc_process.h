#ifndef TESTS_PLC_PROCESS_H
#define TESTS_PLC_PROCESS_H

#include <QProcess>
#include <QString>

#include <csignal>

constexpr int WAIT_MS = 5000;

/// The program as it runs, until the end of the test.
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
        return text.startsWith(link) ? text.mid(text.indexOf(' ') + 1) : QByteArray();
    }
    QByteArray reported() { return line(QProcess::StandardError); }
    void send(int signalNumber) { ::kill(static_cast<pid_t>(m_process.processId()), signalNumber); }
    /// -1 when it has crashed or does not end.
    int exitCode()
    {
        m_process.waitForFinished(WAIT_MS);
        const bool ended = m_process.state() == QProcess::NotRunning &&
                           m_process.exitStatus() == QProcess::NormalExit;
        return ended ? m_process.exitCode() : -1;
    }

private:
    QProcess m_process;
};

#endif
