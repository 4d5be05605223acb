// Tag file lines, and values and writes in every format.
#include "cases.h"
#include "tag_file.h"
#include "writes.h"

class PanelTagFile : public QObject
{
    Q_OBJECT
private slots:
    void goodLine_data() { addCases(); }
    void goodLine();
    void wrongLine_data() { addCases(); }
    void wrongLine();
    void wholeFile();
    void value_data() { addCases(); }
    void value();
    void wrongWrite_data() { addCases(); }
    void wrongWrite();
};

namespace
{

TagFile parse(const QByteArray& lines)
{
    return parseTags(text("t.csv"), text(lines));
}

} // namespace

void PanelTagFile::goodLine()
{
    const TagFile file = parse(given(1)[0]);
    QCOMPARE(file.errors, QStringList());
    const Tag tag = file.tags.value(0);
    QTEST(tag.name + text(" %1 %2 %3 @%4 %5")
                         .arg(text(REGISTER_TYPES[tag.type].name))
                         .arg(tag.address)
                         .arg(tag.length)
                         .arg(tag.station)
                         .arg(formatNames()[int(tag.format)]),
          "expected");
}

void PanelTagFile::wrongLine()
{
    const TagFile file = parse(given(1)[0]);
    QVERIFY(file.tags.isEmpty());
    QCOMPARE(file.errors.size(), 1);
    verifyContains(file.errors[0]);
}

void PanelTagFile::wholeFile()
{
    const TagFile file = parse("# heading\n\nx,MEMORY_WORD,1,1,1,\r\nbad\n"
                               "x,MEMORY_WORD,2,1,1,\ny,MEMORY_WORD,3,1,1,");
    QCOMPARE(file.tags.size(), 2);
    QCOMPARE(tagByName(file.tags, text("y")), 1);
    QCOMPARE(file.errors.size(), 2);
    QVERIFY(file.errors[0].startsWith(text("t.csv:4: ")));
    QCOMPARE(file.errors[1], text("t.csv:5: expected a new name, 'x' is taken"));
    QCOMPARE(readTagFile(text("/nonexistent/tags.csv")).errors.size(), 1);
    QVERIFY(readTagFile(text("/dev/null")).errors.value(0).endsWith(text("no tags")));
}

void PanelTagFile::value()
{
    const QList<QByteArray> in = given(3);
    const QVector<Tag> tags = parse(in[0]).tags;
    QVector<Write> writes;
    QCOMPARE(addWrite(text("2.5:x=" + in[2]), true, tags, &writes), QString());
    QCOMPARE(writes[0].due, Micros{2500000});
    const QString shown = formatValue(tags[0], QByteArray::fromHex(in[1]));
    QCOMPARE(writeText(writes[0], tags), text("x=") + shown);
    QTEST(text(writes[0].value.toHex() + ": ") + shown, "expected");
}

void PanelTagFile::wrongWrite()
{
    const QList<QByteArray> in = given(3);
    QVector<Write> writes;
    verifyContains(addWrite(text(in[2]), in[1] == "write-at", parse(in[0]).tags, &writes));
    QVERIFY(writes.isEmpty());
}

QTEST_APPLESS_MAIN(PanelTagFile)
#include "tst_panel_tag_file.moc"
