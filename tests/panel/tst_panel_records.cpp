// What the panel tells another program: JSON records of what changed, and its exit status.
#include "programs.h"

#include <memory>

class PanelRecords : public QObject
{
    Q_OBJECT
private slots:
    void tagRecord_data() { addCases(); }
    void tagRecord();
    void commands_data() { addCases(); }
    void commands();
    void changesAlone();
    void endsWithItsReader_data();
    void endsWithItsReader();

private:
    std::unique_ptr<Plc> m_plc; // with a memory that nothing changes
};

namespace
{

// 1.5 and no number as float32, the low-order word first.
constexpr const char* IMAGE = "1 memory 100 = 513 65535 0 0x3FC0 0 0x7FC0\n"
                              "1 input 0 = 1 0 1\n"
                              "2 special-word 5 = 7\n";

struct Output {
    int status = -1;
    QVector<QJsonObject> records; // an empty one for a line that is none
    QString errors;

    QVector<QJsonObject> of(const char* kind) const
    {
        QVector<QJsonObject> some;
        for (const QJsonObject& record : records)
            if (record.contains(QLatin1String("quality")) == (qstrcmp(kind, "tag") == 0) &&
                record.contains(QLatin1String(kind)))
                some << record;
        return some;
    }
    QVector<QJsonObject> ofTag(const char* name) const
    {
        QVector<QJsonObject> some;
        for (const QJsonObject& record : of("tag"))
            if (record[QLatin1String("tag")] == QLatin1String(name))
                some << record;
        return some;
    }
};

QString writeFile(const QTemporaryDir& directory, const char* name, const QByteArray& bytes)
{
    QFile file(directory.filePath(text(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s", name);
    return file.fileName();
}

void start(QProcess* panel, const QString& device, const QByteArray& options,
           const QString& tagFile)
{
    panel->start(text(PANEL_PROGRAM),
                 (text("--library " DRIVER_LIBRARY " --timeout 100 --serial ") + device +
                  QLatin1Char(' ') + text(options))
                         .split(QLatin1Char(' '), Qt::SkipEmptyParts) +
                     QStringList{tagFile});
}

Output run(const QString& device, const QByteArray& options, const QByteArray& tags)
{
    const QTemporaryDir directory;
    QProcess panel;
    start(&panel, device, options, writeFile(directory, "tags.csv", tags));
    Output output;
    if (!panel.waitForFinished(PATIENCE_MS) || panel.exitStatus() != QProcess::NormalExit)
        return output;
    output.status = panel.exitCode();
    output.errors = text(panel.readAllStandardError());
    for (const QByteArray& line : panel.readAllStandardOutput().trimmed().split('\n'))
        output.records << QJsonDocument::fromJson(line).object();
    return output;
}

QString asText(const QJsonValue& value)
{
    return text(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
}

QString field(const QJsonObject& record, const char* name)
{
    return record[QLatin1String(name)].toVariant().toString();
}

/// The last state of each write, in the order of the first ones.
QString writeStates(const Output& output)
{
    QStringList writes, states;
    for (const QJsonObject& record : output.of("write")) {
        const QString write = field(record, "tag") + QLatin1Char('=') + field(record, "write");
        const QString state = write + QLatin1Char(' ') + field(record, "state");
        const int known = writes.indexOf(write);
        if (known >= 0) {
            states[known] = state;
            continue;
        }
        writes << write;
        states << state;
    }
    return states.join(text(", "));
}

} // namespace

void PanelRecords::tagRecord()
{
    if (!m_plc) {
        const QTemporaryDir directory;
        m_plc = std::make_unique<Plc>(text("--pty --no-machine --load ") +
                                      writeFile(directory, "image", IMAGE));
    }
    const Output output = run(m_plc->address, "--once --retries 0", given(1)[0] + '\n');
    const QVector<QJsonObject> tags = output.of("tag");
    QCOMPARE(tags.size(), 1);
    QCOMPARE(field(tags[0], "tag"), text("x"));
    QTEST(text("%1: %2 %3 %4 %5")
              .arg(output.status)
              .arg(field(tags[0], "address"), field(tags[0], "station"), field(tags[0], "quality"),
                   asText(tags[0][QLatin1String("value")])),
          "expected");
    QCOMPARE(output.errors, QString());
}

void PanelRecords::commands()
{
    const QList<QByteArray> in = given(2);
    const auto plc =
        in[0].isEmpty() ? nullptr : std::make_unique<Plc>(text("--pty --no-machine " + in[0]));
    const QString device = plc ? plc->address : text("/no/such/device");
    const Output output = run(device, in[1], "a,MW101\nb,MW101,,,2\n");
    QTEST(text("%1: a %2 b %3; %4")
              .arg(output.status)
              .arg(output.ofTag("a").size())
              .arg(output.ofTag("b").size())
              .arg(writeStates(output))
              .trimmed(),
          "expected");
}

void PanelRecords::changesAlone()
{
    const Plc plc(text("--pty"));
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const Output output = run(plc.address, "--duration 1 --write-at 0.5:setpoint=321",
                              "number,SW1\nticks,MW103\nsetpoint,MW101\n");
    const QDateTime after = QDateTime::currentDateTimeUtc();
    QCOMPARE(output.status, 0);
    QVERIFY2(output.errors.contains(text("\nRan 1.")), qPrintable(output.errors));

    QDateTime last = before.addMSecs(-1);
    const QDateTime first =
        QDateTime::fromString(field(output.records[0], "time"), Qt::ISODateWithMs);
    for (const QJsonObject& record : output.records) {
        const QStringList keys = record.keys();
        const QString shape = keys.join(QLatin1Char(' '));
        QVERIFY2(shape == text("address quality station tag time value") ||
                     shape == text("state tag time write") || shape == text("event time"),
                 qPrintable(shape));
        const QString time = field(record, "time");
        QVERIFY2(time.size() == 24 && time.endsWith(QLatin1Char('Z')), qPrintable(time));
        const auto at = QDateTime::fromString(time, Qt::ISODateWithMs);
        QVERIFY2(at >= last && at <= after, qPrintable(time));
        last = at;
    }
    QVERIFY(first.msecsTo(last) > 500);

    QCOMPARE(output.ofTag("number").size(), 1);
    const QVector<QJsonObject> ticks = output.ofTag("ticks");
    QVERIFY(ticks.size() >= 5);
    for (int i = 1; i < ticks.size(); ++i)
        QVERIFY(field(ticks[i], "value").toInt() > field(ticks[i - 1], "value").toInt());
    QStringList setpoint;
    for (const QJsonObject& record : output.ofTag("setpoint"))
        setpoint << field(record, "quality") + QLatin1Char(' ') + field(record, "value");
    QCOMPARE(setpoint.join(text(", ")), text("good 500, written 321, good 321"));
    QCOMPARE(writeStates(output), text("setpoint=321 done"));
    QStringList events;
    for (const QJsonObject& record : output.of("event"))
        events << field(record, "event");
    QCOMPARE(events.join(text("; ")),
             text("link to %1 open; write setpoint=321 queued; write setpoint=321 done, "
                  "finish callback state 1; read back setpoint=321 (as written)")
                 .arg(plc.address));
}

void PanelRecords::endsWithItsReader_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::newRow("records, of which no more come") << QByteArray();
    QTest::newRow("text") << QByteArray("--format text");
}

void PanelRecords::endsWithItsReader()
{
    QFETCH(QByteArray, options);
    const Plc plc(text("--pty"));
    const QTemporaryDir directory;
    QProcess panel, head;
    panel.setStandardOutputProcess(&head);
    start(&panel, plc.address, options, writeFile(directory, "tags.csv", "number,SW1\n"));
    head.start(text("head"), {text("-1")});
    QVERIFY(head.waitForFinished(PATIENCE_MS));
    QVERIFY(panel.waitForFinished(PATIENCE_MS));
    QCOMPARE(panel.exitStatus(), QProcess::NormalExit);
    QCOMPARE(panel.exitCode(), 0);
    const QByteArray line = head.readAll();
    QVERIFY2(line.contains("link to ") && line.count('\n') == 1, line);
}

QTEST_GUILESS_MAIN(PanelRecords)
#include "tst_panel_records.moc"
