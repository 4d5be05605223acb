// Tag files: lines, complaints and where they point, the files that come with the panel, and the
// writes that name a tag.
#include "short_form.h"
#include "support/cases.h"
#include "tag_file.h"
#include "writes.h"

namespace
{

constexpr quint32 SEED = 7;
constexpr int RANDOM_FILES = 20000;
constexpr int LONGEST_RANDOM_FILE = 24; // words

// What random files are made of: much of it right, so that some lines are.
constexpr const char* WORDS[] = {"x",          "y",           "MW65534", "q0.7", "MD20",
                                 "memory_bit", "MEMORY_WORD", "100",     "2.5",  "0",
                                 "1",          "2",           "64",      "-1",   "999999999999",
                                 "float32",    "bool",        "int32",   "",     "\"",
                                 "\"\"",       "#",           " ",       ",",    ",",
                                 ",",          ",",           "\n",      "\r\n"};

QByteArray randomFile(QRandomGenerator* random)
{
    QByteArray file;
    for (int i = random->bounded(LONGEST_RANDOM_FILE); i > 0; --i)
        file += WORDS[random->bounded(int(std::size(WORDS)))];
    return file;
}

TagFile parse(const QByteArray& lines)
{
    return parseTags(text("t.csv"), text(lines));
}

/// Complaints, then tags, each in full.
QString describe(const TagFile& file)
{
    QStringList found = file.errors;
    for (const Tag& tag : file.tags)
        found << tag.name + text(" %1 %2 %3 @%4 %5")
                                .arg(text(REGISTER_TYPES[tag.type].name), shortForm(tag))
                                .arg(tag.length)
                                .arg(tag.station)
                                .arg(formatNames()[int(tag.format)]);
    return found.join(text("; "));
}

QString line(const Given& in)
{
    const TagFile file = parse(in[0]);
    for (const Tag& tag : file.tags)
        // The driver reads the address as text, which has to say the same.
        if (text(SHORT_PREFIXES[tag.type]) + tag.addressText != shortForm(tag))
            return text("to the driver it is ") + tag.addressText;
    return describe(file).remove(text("t.csv:1:"));
}

/// The file in a folder of its own, so that complaints can be compared.
QString readAsFile(const QByteArray& content)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(text("t.csv")));
    file.open(QIODevice::WriteOnly);
    file.write(content);
    file.close();
    return describe(readTagFile(file.fileName())).remove(folder.path() + text("/"));
}

/// Control characters of a case are spelled: \n, \r, \E (escape) and \B (byte-order mark).
QString wholeFile(const Given& in)
{
    QByteArray content = in[0];
    content.replace("\\n", "\n").replace("\\r", "\r").replace("\\E", "\x1B");
    return readAsFile(content.replace("\\B", "\xEF\xBB\xBF"));
}

QString unreadableFile(const Given& in)
{
    return in[0] == "(too long)" ? readAsFile(QByteArray(1024 * 1024 + 1, 'x'))
                                 : describe(readTagFile(text(in[0])));
}

QString exampleFile(const Given& in)
{
    if (in[0] == "*.csv")
        return QDir(text(EXAMPLES)).entryList({text(in[0])}).join(QLatin1Char(' '));
    const TagFile file = readTagFile(text(EXAMPLES "/" + in[0]));
    QStringList found = file.errors;
    for (const Tag& tag : file.tags)
        found << shortForm(tag);
    return found.join(QLatin1Char(' '));
}

QString write(const Given& in)
{
    const QVector<Tag> tags = parse(in[0]).tags;
    QVector<Write> writes;
    const QString error = addWrite(text(in[2]), in[1] == "write-at", tags, &writes);
    if (writes.isEmpty())
        return error;
    return error + text("at %1, %2 for %3")
                       .arg(writes[0].due)
                       .arg(text(writes[0].value.toHex()), writeText(writes[0], tags));
}

} // namespace

class PanelTagFile : public CaseTest
{
    Q_OBJECT
public:
    PanelTagFile()
        : CaseTest(CASES, {{"line", 1, line},
                           {"wholeFile", 1, wholeFile},
                           {"unreadableFile", 1, unreadableFile},
                           {"exampleFile", 1, exampleFile},
                           {"write", 3, write}})
    {
    }
private slots:
    // Whatever a file holds: a tag lies where its short form says and fits its format, and
    // complaints are in the order of the lines and columns, which exist.
    void randomFiles()
    {
        QRandomGenerator random(SEED);
        int tags = 0;
        for (int i = 0; i < RANDOM_FILES; ++i) {
            const QByteArray content = randomFile(&random);
            const TagFile file = parse(content);
            tags += file.tags.size();
            for (const Tag& tag : file.tags) {
                const Tag again = parse("x," + shortForm(tag).toLower().toUtf8()).tags.value(0);
                QVERIFY2(again.type == tag.type && again.address == tag.address, content);
                QVERIFY2(formatProblem(tag.type, tag.length, tag.format).isEmpty(), content);
            }
            const QList<QByteArray> lines = content.split('\n');
            QPair<int, int> last;
            for (const QString& error : file.errors) {
                const QPair<int, int> place(error.section(text(":"), 1, 1).toInt(),
                                            error.section(text(":"), 2, 2).toInt());
                QVERIFY2(last <= place && place.first <= lines.size(), content);
                QVERIFY2(place.second >= 1 && place.second <= lines[place.first - 1].size() + 1,
                         content);
                last = place;
            }
        }
        QVERIFY(tags > 0);
        // No complaint is held back: of each line the address, the length, and the name again.
        QCOMPARE(parse(QByteArray("x,MW,,0\n").repeated(100)).errors.size(), 299);
    }
};

QTEST_GUILESS_MAIN(PanelTagFile)
#include "tst_panel_tag_file.moc"
