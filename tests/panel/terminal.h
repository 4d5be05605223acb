// A terminal that a test types at and looks at: a session of tmux with a shell in it.
#pragma once

#include "cases.h"

#include <csignal>
#include <sys/prctl.h>

/// Ends with the test, however that ends.
class TiedProcess : public QProcess
{
protected:
    void setupChildProcess() override { ::prctl(PR_SET_PDEATHSIG, SIGTERM); }
};

class Terminal
{
public:
    /// @param environment of the shell, as NAME=VALUE
    Terminal(int columns, int rows, const QStringList& environment)
    {
        QStringList session = {text("new-session"),      text("-d"), text("-x"),
                               QString::number(columns), text("-y"), QString::number(rows)};
        for (const QString& variable : environment)
            session << text("-e") << variable;
        m_server.setProcessEnvironment(surroundings());
        m_server.start(text(TMUX), socket() + QStringList{text("-u"), text("-f"), text("/dev/null"),
                                                          text("-D")});
        const QDeadlineTimer patience(START_MS);
        while (ask(session + QStringList{text("exec sh")}) != 0 && !patience.hasExpired())
            QTest::qWait(POLL_MS);
    }
    ~Terminal()
    {
        ask({text("kill-server")});
        m_server.terminate();
        m_server.waitForFinished(START_MS);
    }

    /// Types as if by hand; names of keys such as Enter, NPage and C-c stand for these.
    void press(const QStringList& keys) { ask(QStringList{text("send-keys")} + keys); }
    void type(const QString& what) { ask({text("send-keys"), text("-l"), what}); }
    void enter(const QString& line)
    {
        type(line);
        press({text("Enter")});
    }
    void resize(int columns, int rows)
    {
        ask({text("resize-window"), text("-x"), QString::number(columns), text("-y"),
             QString::number(rows)});
    }

    /// What is on the screen now.
    QString look() { return capture({}); }
    /// The same with the control sequences for colours.
    QString lookAtColours() { return capture({text("-e")}); }
    /// With all that has scrolled away.
    QString lookBack() { return capture({text("-S"), text("-")}); }
    /// A format of tmux, such as alternate_on.
    QString state(const char* format)
    {
        ask({text("display-message"), text("-p"), text("#{") + text(format) + QLatin1Char('}')});
        return m_said.trimmed();
    }
    /// What was seen last, for messages.
    QString seen() const { return m_said; }

    bool shows(const QString& pattern) { return !read(pattern).isNull(); }
    /// What the pattern, or its first group, matches on the screen; null when nothing does.
    QString read(const QString& pattern) { return find(look(), pattern); }
    static QString find(const QString& screen, const QString& pattern)
    {
        const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
        const QRegularExpressionMatch match = expression.match(screen);
        return match.captured(match.lastCapturedIndex());
    }

private:
    static constexpr int START_MS = 10000, POLL_MS = 20;

    static QStringList socket()
    {
        return {text("-L"), text("test-%1").arg(QCoreApplication::applicationPid())};
    }
    QProcessEnvironment surroundings() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(text("TMUX_TMPDIR"), m_directory.path());
        environment.insert(text("LC_ALL"), text("C.UTF-8"));
        for (const char* name : {"TMUX", "ENV"})
            environment.remove(text(name));
        return environment;
    }
    /// @return the exit status, 0 when the server did it
    int ask(const QStringList& command)
    {
        QProcess client;
        client.setProcessEnvironment(surroundings());
        client.start(text(TMUX), socket() + QStringList{text("-N")} + command);
        const bool finished = client.waitForFinished(START_MS);
        m_said = text(client.readAllStandardOutput());
        return finished && client.exitStatus() == QProcess::NormalExit ? client.exitCode() : -1;
    }
    QString capture(const QStringList& options)
    {
        ask(QStringList{text("capture-pane"), text("-p")} + options);
        return m_said;
    }

    QTemporaryDir m_directory;
    TiedProcess m_server;
    QString m_said;
};
