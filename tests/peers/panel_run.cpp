#include "panel_run.h"

#include "peer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryFile>

namespace
{

constexpr int REPLY_TIMEOUT_MS = 2000; // a peer on a busy machine is not given up
constexpr int LONGEST_BLOCK = 16;      // short, so that a case can be longer

/// The value alone, as it stands in the record.
QString jsonText(const QJsonValue& value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(1, array.size() - 2));
}

void takeRecord(const QByteArray& line, QMap<QString, QString>* values)
{
    const QJsonObject record = QJsonDocument::fromJson(line).object();
    const QString tag = record[QLatin1String("tag")].toString();
    if (!record.contains(QLatin1String("value")))
        return;
    const bool good = record[QLatin1String("quality")].toString() == QLatin1String("good");
    (*values)[tag] = good ? jsonText(record[QLatin1String("value")]) : QString(QLatin1Char('-'));
}

} // namespace

PanelRun runPanel(const QStringList& link, const QList<QByteArray>& tags,
                  const QList<QByteArray>& writes)
{
    QTemporaryFile file;
    if (!file.open() || file.write(tags.join('\n') + '\n') < 0 || !file.flush())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    QStringList arguments = {QStringLiteral("--library=" DRIVER_LIBRARY),
                             QStringLiteral("--format=json"),
                             QStringLiteral("--once"),
                             QStringLiteral("--timeout=%1").arg(REPLY_TIMEOUT_MS),
                             QStringLiteral("--block=%1").arg(LONGEST_BLOCK),
                             file.fileName()};
    for (const QByteArray& write : writes)
        arguments << QStringLiteral("--write") << QString::fromUtf8(write);

    QProcess panel;
    panel.start(QStringLiteral(PANEL_PROGRAM), link + arguments);
    PanelRun run;
    if (panel.waitForFinished(PATIENCE_MS) && panel.exitStatus() == QProcess::NormalExit)
        run.status = panel.exitCode();
    const QByteArray records = panel.readAllStandardOutput();
    for (const QByteArray& line : records.split('\n'))
        takeRecord(line, &run.values);
    run.said = records + panel.readAllStandardError();
    return run;
}

QString valuesText(const PanelRun& run)
{
    QStringList texts;
    for (auto value = run.values.begin(); value != run.values.end(); ++value)
        texts << value.key() + QLatin1Char('=') + value.value();
    return texts.join(QLatin1Char(' '));
}
