// Tag files: lines, complaints and where they point, the files that come with the panel, and the
// writes that name a tag.
#include "cases.h"
#include "short_form.h"
#include "tag_file.h"
#include "writes.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

class PanelTagFile : public QObject
{
    Q_OBJECT
private slots:
    void goodLine_data() { addCases(); }
    void goodLine();
    void wrongLine_data() { addCases(); }
    void wrongLine();
    void wholeFile_data() { addCases(); }
    void wholeFile();
    void unreadableFile_data() { addCases(); }
    void unreadableFile();
    void hundredWrongLines();
    void randomFiles();
    void exampleFile_data() { addCases(); }
    void exampleFile();
    void everyExampleHasACase();
    void write();
    void wrongWrite_data() { addCases(); }
    void wrongWrite();
};

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

constexpr int WRONG_LINES = 100;
constexpr int WRONG_FIELDS = 3; // of each of them

TagFile parse(const QByteArray& lines)
{
    return parseTags(text("t.csv"), text(lines));
}

/// Control characters of a case are spelled: \n, \r, \E (escape) and \B (byte-order mark).
QByteArray unescaped(QByteArray spelled)
{
    spelled.replace("\\n", "\n").replace("\\r", "\r").replace("\\E", "\x1B");
    return spelled.replace("\\B", "\xEF\xBB\xBF");
}

QString describe(const Tag& tag)
{
    return tag.name + text(" %1 %2 %3 @%4 %5")
                          .arg(text(REGISTER_TYPES[tag.type].name), shortForm(tag))
                          .arg(tag.length)
                          .arg(tag.station)
                          .arg(formatNames()[int(tag.format)]);
}

/// The file in a folder of its own, so that complaints can be compared.
TagFile readAsFile(const QByteArray& content)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(text("t.csv")));
    file.open(QIODevice::WriteOnly);
    file.write(content);
    file.close();
    TagFile tags = readTagFile(file.fileName());
    tags.errors.replaceInStrings(folder.path() + text("/"), QString());
    return tags;
}

} // namespace

void PanelTagFile::goodLine()
{
    const TagFile file = parse(given(1)[0]);
    QCOMPARE(file.errors, QStringList());
    QCOMPARE(file.tags.size(), 1);
    QTEST(describe(file.tags[0]), "expected");
    // The driver reads the address as text, which has to say the same.
    QCOMPARE(text(SHORT_PREFIXES[file.tags[0].type]) + file.tags[0].addressText,
             shortForm(file.tags[0]));
}

// Expected are "COLUMN part of WHAT 'FOUND'" of each complaint.
void PanelTagFile::wrongLine()
{
    QFETCH(QString, expected);
    const TagFile file = parse(given(1)[0]);
    QVERIFY(file.tags.isEmpty());
    const QStringList wanted = expected.split(text(" & "));
    QVERIFY2(file.errors.size() == wanted.size(), qPrintable(file.errors.join(text("\n"))));
    for (int i = 0; i < wanted.size(); ++i) {
        const QString& error = file.errors[i];
        const int quote = wanted[i].indexOf(text(" '"));
        const QString start = text("t.csv:1:%1: expected ").arg(wanted[i].section(text(" "), 0, 0));
        QVERIFY2(error.startsWith(start), qPrintable(error));
        QVERIFY2(error.mid(start.size()).startsWith(wanted[i].left(quote).section(text(" "), 1)),
                 qPrintable(error));
        QVERIFY2(error.endsWith(text(", not") + wanted[i].mid(quote)), qPrintable(error));
    }
}

void PanelTagFile::wholeFile()
{
    const TagFile file = readAsFile(unescaped(given(1)[0]));
    QStringList found = file.errors;
    for (const Tag& tag : file.tags)
        found << describe(tag);
    QTEST(found.join(text("; ")), "expected");
}

void PanelTagFile::unreadableFile()
{
    QByteArray name = given(1)[0];
    const TagFile file = name == "(too long)" ? readAsFile(QByteArray(1024 * 1024 + 1, 'x'))
                                              : readTagFile(text(name));
    QCOMPARE(file.errors.size(), 1);
    verifyContains(file.errors[0]);
}

void PanelTagFile::hundredWrongLines()
{
    QStringList lines;
    for (int i = 0; i < WRONG_LINES; ++i)
        lines << text("x%1,MW,,0,").arg(i) + (i % 2 == 0 ? text("1,bits") : text("900"));
    const TagFile file = parse(lines.join(text("\n")).toUtf8());
    QCOMPARE(file.errors.size(), WRONG_LINES * WRONG_FIELDS);
    for (int i = 0; i < file.errors.size(); ++i)
        QVERIFY2(file.errors[i].startsWith(text("t.csv:%1:").arg(i / WRONG_FIELDS + 1)),
                 qPrintable(file.errors[i]));
}

// Whatever a file holds: a tag lies where its short form says and fits its format, and complaints
// are in the order of the lines and columns, which exist.
void PanelTagFile::randomFiles()
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
}

void PanelTagFile::exampleFile()
{
    QFETCH(QString, expected);
    const TagFile file = readTagFile(text(EXAMPLES "/" + given(1)[0]));
    QCOMPARE(file.errors, QStringList());
    QStringList places;
    for (const Tag& tag : file.tags)
        places << shortForm(tag);
    QCOMPARE(places.join(text(" ")), expected);
}

void PanelTagFile::everyExampleHasACase()
{
    QFile cases(text(CASES));
    QVERIFY(cases.open(QIODevice::ReadOnly));
    const QByteArray known = cases.readAll();
    const QStringList files = QDir(text(EXAMPLES)).entryList({text("*.csv")});
    QVERIFY(!files.isEmpty());
    for (const QString& file : files)
        QVERIFY2(known.contains("\n" + file.toUtf8() + ARROW), qPrintable(file));
}

void PanelTagFile::write()
{
    const QVector<Tag> tags = parse("level,MW100\nx,MW101,,2").tags;
    QVector<Write> writes;
    QCOMPARE(addWrite(text("2.5:x=7;0x10"), true, tags, &writes), QString());
    QCOMPARE(writes[0].due, Micros{2500000});
    QCOMPARE(writes[0].value.toHex(), QByteArray("07001000"));
    QCOMPARE(writeText(writes[0], tags), text("x=7 16"));
}

void PanelTagFile::wrongWrite()
{
    const QList<QByteArray> in = given(3);
    QVector<Write> writes;
    verifyContains(addWrite(text(in[2]), in[1] == "write-at", parse(in[0]).tags, &writes));
    QVERIFY(writes.isEmpty());
}

QTEST_GUILESS_MAIN(PanelTagFile)
#include "tst_panel_tag_file.moc"
