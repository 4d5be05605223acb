// A bad controller: whatever it does, each value shown is one that its memory held, each write ends
// once, and one that is said to be done is in the memory.
#include "programs.h"

class PanelFaults : public QObject
{
    Q_OBJECT
private slots:
    void neverAWrongValue_data() { addCases(); }
    void neverAWrongValue();
};

namespace
{

// Words that are never written hold their own address; those from FIRST_WRITTEN on are written.
// Each has a request of its own, all of one shape: a reply mixed up would show.
constexpr int FIRST_READ = 1000, READ_WORDS = 6;
constexpr int FIRST_WRITTEN = 2000, WRITTEN_WORDS = 3;
constexpr int WRITES = 12;

int writtenValue(int write)
{
    return 5000 + write;
}

QString writeFile(const QTemporaryDir& directory, const char* name, const QByteArray& bytes)
{
    QFile file(directory.filePath(text(name)));
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return file.fileName();
}

QString tagFile(const QTemporaryDir& directory)
{
    QByteArray tags;
    for (int i = 0; i < READ_WORDS; ++i)
        tags += QByteArray("r%1,MW%1\n").replace("%1", QByteArray::number(FIRST_READ + 2 * i));
    for (int i = 0; i < WRITTEN_WORDS; ++i)
        tags += QByteArray("w%1,MW%1\n").replace("%1", QByteArray::number(FIRST_WRITTEN + 2 * i));
    return writeFile(directory, "tags.csv", tags);
}

QString imageFile(const QTemporaryDir& directory)
{
    QByteArray image;
    for (int i = 0; i < READ_WORDS; ++i)
        image +=
            QByteArray("1 memory %1 = %1\n").replace("%1", QByteArray::number(FIRST_READ + 2 * i));
    return writeFile(directory, "before.txt", image);
}

QByteArray writtenTag(int write)
{
    return "w" + QByteArray::number(FIRST_WRITTEN + 2 * (write % WRITTEN_WORDS));
}

QStringList writeOptions()
{
    QStringList options;
    for (int i = 0; i < WRITES; ++i)
        options
            << text("--write-at")
            << text("%1:%2=%3").arg(0.1 * (i + 1)).arg(text(writtenTag(i))).arg(writtenValue(i));
    return options;
}

/// Values that a tag may ever have.
QSet<int> possibleValues(const QByteArray& tag)
{
    if (tag.startsWith('r'))
        return {tag.mid(1).toInt()};
    QSet<int> values = {0};
    for (int i = 0; i < WRITES; ++i)
        if (writtenTag(i) == tag)
            values << writtenValue(i);
    return values;
}

/// The words of the memory area in a saved image.
QMap<int, int> savedWords(const QString& fileName)
{
    QMap<int, int> words;
    QFile file(fileName);
    file.open(QIODevice::ReadOnly);
    const QRegularExpression run(text("^1 memory (\\d+) = ([^#\n]*)"),
                                 QRegularExpression::MultilineOption);
    for (auto it = run.globalMatch(text(file.readAll())); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        int address = match.captured(1).toInt();
        for (const QString& value : match.captured(2).split(QLatin1Char(' '), Qt::SkipEmptyParts))
            words[address++] = value.toInt(nullptr, 0);
    }
    return words;
}

struct Told {
    QMap<QByteArray, int> lastDone; ///< value of the last write to a tag that was done
    QSet<QByteArray> uncertain;     ///< tags with a failed write since
    int ended = 0, values = 0;
    QStringList wrong;
};

/// Reads the panel's records.
Told readRecords(const QByteArray& output)
{
    Told told;
    for (const QByteArray& line : output.split('\n')) {
        const QJsonObject record = QJsonDocument::fromJson(line).object();
        const QByteArray tag = record[text("tag")].toString().toUtf8();
        const QString state = record[text("state")].toString();
        if (record.contains(text("value")) && !record[text("value")].isNull()) {
            ++told.values;
            if (!possibleValues(tag).contains(record[text("value")].toInt()))
                told.wrong << text(line);
        }
        if (state == text("done")) {
            told.lastDone[tag] = record[text("write")].toString().toInt();
            told.uncertain.remove(tag);
        } else if (state == text("failed")) {
            told.uncertain << tag;
        }
        told.ended += state.isEmpty() || state == text("queued") ? 0 : 1;
    }
    return told;
}

} // namespace

void PanelFaults::neverAWrongValue()
{
    const QList<QByteArray> in = given(2);
    const QTemporaryDir directory;
    const QString after = directory.filePath(text("after.txt"));
    QProcess panel;
    {
        const Plc plc(text("--pty --no-machine --load %1 --save %2 %3")
                          .arg(imageFile(directory), after, text(in[0])));
        QVERIFY(!plc.address.isEmpty());
        panel.start(text(PANEL_PROGRAM),
                    QStringList{text("--library=" DRIVER_LIBRARY), text("--timeout=100"),
                                text("--block=1"), text("--duration=4"), text("--format=json"),
                                text("--serial"), plc.address, tagFile(directory)} +
                        text(in[1]).split(QLatin1Char(' '), Qt::SkipEmptyParts) + writeOptions());
        QVERIFY(panel.waitForFinished(PATIENCE_MS));
    }
    const Told told = readRecords(panel.readAllStandardOutput());
    QCOMPARE(told.wrong, QStringList());
    QVERIFY(told.values >= READ_WORDS);
    QCOMPARE(told.ended, WRITES);
    const QMap<int, int> words = savedWords(after);
    QCOMPARE(words.value(FIRST_READ), FIRST_READ);
    for (auto it = told.lastDone.begin(); it != told.lastDone.end(); ++it)
        if (!told.uncertain.contains(it.key()))
            QCOMPARE(words.value(it.key().mid(1).toInt()), it.value());
    const QString statistics = text(panel.readAllStandardError());
    const QRegularExpression failed(text("^Ran .* good, (\\d+) failed"),
                                    QRegularExpression::MultilineOption);
    const int failures = failed.match(statistics).captured(1).toInt();
    QTEST(text(failures > 0 ? "failures" : "none"), "expected");
    if (failures == 0)
        QCOMPARE(panel.exitCode(), 0);
}

QTEST_GUILESS_MAIN(PanelFaults)
#include "tst_panel_faults.moc"
