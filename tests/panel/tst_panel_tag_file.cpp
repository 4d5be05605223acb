// Tag file lines, and values in every format.
#include "tag_file.h"
#include "value.h"

#include <QtTest>

class PanelTagFile : public QObject
{
    Q_OBJECT
private slots:
    void goodLine_data();
    void goodLine();
    void wrongLine_data();
    void wrongLine();
    void allWrongLinesInOneGo();
    void wrongFile();
    void value_data();
    void value();
    void wrongValue_data();
    void wrongValue();
};

namespace
{

QString text(const char* latin1)
{
    return QString::fromLatin1(latin1);
}

TagFile parse(const char* lines)
{
    return parseTags(text("t.csv"), text(lines));
}

} // namespace

void PanelTagFile::goodLine_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("format");
    const auto row = [](const char* line, int type, int address, int length, Format format) {
        QTest::newRow(line) << type << address << length << int(format);
    };
    row("x,INPUT_BIT,12.3,1,1,bool", INPUT_BIT, 99, 1, Format::Bool);
    row("x,MEMORY_BIT,0.7,9,1,", MEMORY_BIT, 7, 9, Format::Bool);
    row("x,SPECIAL_BIT,17,1,1,", SPECIAL_BIT, 17, 1, Format::Bool);
    row(" x , OUTPUT_BYTE , 5 , 2 , 1 , int8 # two", OUTPUT_BYTE, 5, 2, Format::Int8);
    row("x,MEMORY_WORD,100,1,1,", MEMORY_WORD, 100, 1, Format::Uint16);
    row("x,MEMORY_WORD,100,2,1,float32", MEMORY_WORD, 100, 2, Format::Float32);
    row("x,INPUT_DWORD,3,4,1,", INPUT_DWORD, 3, 4, Format::Uint32);
    row("x,SPECIAL_WORD,0,64,1,hex", SPECIAL_WORD, 0, 64, Format::Hex);
}

void PanelTagFile::goodLine()
{
    const TagFile file = parse(QTest::currentDataTag());
    QCOMPARE(file.errors, QStringList());
    QCOMPARE(file.tags.size(), 1);
    const Tag& tag = file.tags[0];
    QCOMPARE(tag.name, text("x"));
    QTEST(tag.type, "type");
    QTEST(tag.address, "address");
    QTEST(tag.length, "length");
    QCOMPARE(tag.station, 1);
    QTEST(int(tag.format), "format");
}

void PanelTagFile::wrongLine_data()
{
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* line, const char* expected) {
        QTest::newRow(line) << text(expected);
    };
    row("x,MEMORY_WORD,1,1,1", "expected 6 fields");
    row("x,MEMORY_WORD,1,1,1,hex,", "expected 6 fields");
    row("a=b,MEMORY_WORD,1,1,1,", "expected a name");
    row("2x,MEMORY_WORD,1,1,1,", "expected a name");
    row("x,memory_word,1,1,1,", "expected one of the types INPUT_BIT");
    row("x,MEMORY_BIT,12,1,1,", "byte.bit");
    row("x,MEMORY_BIT,1.8,1,1,", "byte.bit");
    row("x,MEMORY_BIT,1.2.3,1,1,", "byte.bit");
    row("x,MEMORY_WORD,1.5,1,1,", "expected a decimal address");
    row("x,MEMORY_WORD,-1,1,1,", "expected a decimal address");
    row("x,MEMORY_WORD,1048576,1,1,", "expected a decimal address");
    row("x,MEMORY_WORD,1,0,1,", "expected a length of 1 to 64");
    row("x,MEMORY_WORD,1,65,1,", "expected a length of 1 to 64");
    row("x,MEMORY_WORD,1,1,0,", "expected a station");
    row("x,MEMORY_WORD,1,1,248,", "expected a station");
    row("x,MEMORY_WORD,1,1,1,double", "expected one of the formats bool int8");
    row("x,MEMORY_WORD,1,1,1,bool", "bool is for bits");
    row("x,MEMORY_BIT,1.0,1,1,int16", "format bool for a bit");
    row("x,MEMORY_WORD,1,1,1,uint8", "as wide as the element");
    row("x,MEMORY_BYTE,1,2,1,uint16", "as wide as the element");
    row("x,MEMORY_WORD,1,3,1,int32", "expected an even length");
    row("x,MEMORY_DWORD,1,1,1,", "expected an even length");
}

void PanelTagFile::wrongLine()
{
    QFETCH(QString, expected);
    const TagFile file = parse(QTest::currentDataTag());
    QVERIFY(file.tags.isEmpty());
    QCOMPARE(file.errors.size(), 1);
    QVERIFY2(file.errors[0].startsWith(text("t.csv:1: ")), qPrintable(file.errors[0]));
    QVERIFY2(file.errors[0].contains(expected), qPrintable(file.errors[0]));
}

void PanelTagFile::allWrongLinesInOneGo()
{
    const TagFile file = parse("# heading\n\nx,MEMORY_WORD,1,1,1,\r\nbad\n"
                               "x,MEMORY_WORD,2,1,1,\ny,MEMORY_WORD,3,1,1,");
    QCOMPARE(file.tags.size(), 2);
    QCOMPARE(tagByName(file.tags, text("y")), 1);
    QCOMPARE(tagByName(file.tags, text("z")), -1);
    QCOMPARE(file.errors.size(), 2);
    QVERIFY(file.errors[0].startsWith(text("t.csv:4: ")));
    QVERIFY(file.errors[1].startsWith(text("t.csv:5: ")));
    QVERIFY(file.errors[1].contains(text("'x' is taken")));
}

void PanelTagFile::wrongFile()
{
    QCOMPARE(readTagFile(text("/nonexistent/tags.csv")).errors.size(), 1);
    QTemporaryFile empty;
    QVERIFY(empty.open());
    QVERIFY(readTagFile(empty.fileName()).errors.value(0).endsWith(text("no tags")));
}

void PanelTagFile::value_data()
{
    QTest::addColumn<QByteArray>("read");    // as a host read delivers it
    QTest::addColumn<QByteArray>("written"); // as a host write takes it
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* line, const char* read, const char* written, const char* typed,
                        const char* shown) {
        QTest::newRow(line) << QByteArray::fromHex(read) << QByteArray::fromHex(written)
                            << text(typed) << text(shown);
    };
    row("x,MEMORY_BIT,0.0,1,1,", "01", "01", "on", "1");
    row("x,OUTPUT_BIT,0.6,3,1,", "010001", "010001", "1;false;TRUE", "1 0 1");
    row("x,MEMORY_BYTE,0,2,1,", "ab07 0000", "ab000700", "171; 7", "171 7");
    row("x,MEMORY_BYTE,0,1,1,int8", "80 00", "8000", "-128", "-128");
    row("x,MEMORY_WORD,0,1,1,", "3412", "3412", "0x1234", "4660");
    row("x,MEMORY_WORD,0,2,1,int16", "ffff 0080", "ffff0080", "-1;-32768", "-1 -32768");
    row("x,MEMORY_WORD,0,1,1,hex", "3412", "3412", "1234", "0x1234");
    row("x,MEMORY_WORD,0,2,1,int32", "feffffff", "feffffff", "-2", "-2");
    row("x,MEMORY_DWORD,0,2,1,", "ffffffff", "ffffffff", "4294967295", "4294967295");
    row("x,MEMORY_DWORD,0,2,1,hex", "0d00ad0b", "0d00ad0b", "0xbad000d", "0x0bad000d");
    row("x,MEMORY_DWORD,0,2,1,float32", "0000c0bf", "0000c0bf", "-1.5", "-1.5");
}

void PanelTagFile::value()
{
    const Tag tag = parse(QTest::currentDataTag()).tags.value(0);
    QFETCH(QByteArray, read);
    QFETCH(QString, typed);
    QTEST(formatValue(tag, read), "shown");
    const ParsedValue parsed = parseValue(tag, typed);
    QCOMPARE(parsed.error, QString());
    QTEST(parsed.bytes, "written");
    QTEST(parsed.shown, "shown");
}

void PanelTagFile::wrongValue_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* line, const char* typed, const char* error) {
        QTest::addRow("%s %s", line, typed) << text(typed) << text(error);
    };
    row("x,MEMORY_BIT,0.0,1,1,", "2", "is none of");
    row("x,MEMORY_BYTE,0,1,1,int8", "128", "outside -128 to 127");
    row("x,MEMORY_BYTE,0,1,1,", "-1", "outside 0 to 255");
    row("x,MEMORY_WORD,0,1,1,", "65536", "outside 0 to 65535");
    row("x,MEMORY_WORD,0,1,1,int16", "-32769", "outside -32768 to 32767");
    row("x,MEMORY_WORD,0,1,1,hex", "10000", "outside 0 to 65535");
    row("x,MEMORY_WORD,0,1,1,", "1.5", "not a number");
    row("x,MEMORY_WORD,0,1,1,", "", "not a number");
    row("x,MEMORY_WORD,0,2,1,", "1", "2 value(s) expected");
    row("x,MEMORY_WORD,0,1,1,", "1;2", "1 value(s) expected");
    row("x,MEMORY_DWORD,0,2,1,", "4294967296", "outside 0 to 4294967295");
    row("x,MEMORY_DWORD,0,2,1,float32", "1e40", "not a 32-bit");
    row("x,MEMORY_DWORD,0,2,1,float32", "nan", "not a 32-bit");
}

void PanelTagFile::wrongValue()
{
    const QByteArray line = QByteArray(QTest::currentDataTag()).split(' ').value(0);
    const Tag tag = parse(line.constData()).tags.value(0);
    QFETCH(QString, typed);
    QFETCH(QString, error);
    const ParsedValue parsed = parseValue(tag, typed);
    QVERIFY2(parsed.error.contains(error), qPrintable(parsed.error));
    QVERIFY(parsed.bytes.isEmpty());
}

QTEST_APPLESS_MAIN(PanelTagFile)
#include "tst_panel_tag_file.moc"
