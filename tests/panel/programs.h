// The two programs as processes, and what the panel's statistics say.
#pragma once

#include "cases.h"

inline constexpr int PATIENCE_MS = 20000;

struct Plc {
    QProcess process;
    QString address; ///< of the link that it printed

    explicit Plc(const QString& arguments)
    {
        process.start(text(PLC_PROGRAM), arguments.split(QLatin1Char(' ')));
        if (process.waitForReadyRead(PATIENCE_MS))
            address = text(process.readLine()).section(QLatin1Char(' '), 1).trimmed();
    }
    ~Plc()
    {
        process.terminate();
        process.waitForFinished(PATIENCE_MS);
    }
};

struct Run {
    int exitCode = -1;
    QString output;
};

inline void startPanel(QProcess* panel, const QString& arguments, const char* tags = TAGS)
{
    const QStringList always = {text("--library=" DRIVER_LIBRARY), text("--timeout=100"),
                                text("--format=text")};
    panel->setProcessChannelMode(QProcess::MergedChannels);
    QStringList words = arguments.split(QLatin1Char(' '));
    panel->start(text(PANEL_PROGRAM), always + words.replaceInStrings(text("TAGS"), text(tags)));
}

inline Run finishPanel(QProcess* panel)
{
    Run run;
    if (panel->state() == QProcess::NotRunning || panel->waitForFinished(PATIENCE_MS))
        run.exitCode = panel->exitStatus() == QProcess::NormalExit ? panel->exitCode() : -1;
    run.output = text(panel->readAll());
    return run;
}

inline Run runPanel(const QString& arguments)
{
    QProcess panel;
    startPanel(&panel, arguments);
    return finishPanel(&panel);
}

/// What `pattern` captured in the output, null when it does not occur.
inline QString capture(const Run& run, const QByteArray& pattern)
{
    const QRegularExpression expression(text(pattern), QRegularExpression::MultilineOption);
    return expression.match(run.output).captured(1);
}

/// The value that the summary gives a tag.
inline QString valueAtEnd(const Run& run, const QByteArray& tag)
{
    return capture(run, "^  " + tag + " +\\S+ @\\d+ +(\\S+) ");
}
