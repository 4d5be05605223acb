// Which block dates which tag, what a tag's state is then, and the way of a write.
#include "statistics.h"
#include "tag_file.h"
#include "tag_state.h"
#include "writes.h"

#include <QtTest>

class PanelState : public QObject
{
    Q_OBJECT
private slots:
    void coverage_data();
    void coverage();
    void tagInTwoBlocks();
    void quality_data();
    void quality();
    void wrongWrite_data();
    void wrongWrite();
    void writes();
    void replacedWrite();
    void results_data();
    void results();
};

namespace
{

QString text(const char* latin1)
{
    return QString::fromLatin1(latin1);
}

QVector<Tag> tags(const char* lines)
{
    const TagFile file = parseTags(QString(), text(lines));
    Q_ASSERT(file.errors.isEmpty());
    return file.tags;
}

ImageRange block(int area, int address, int length, int station = 1)
{
    RW_VAR var;
    var.regType = area;
    var.address = address;
    var.length = length;
    var.station = station;
    return rangeOfBlock(var);
}

} // namespace

void PanelState::coverage_data()
{
    QTest::addColumn<int>("area");
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("station");
    QTest::addColumn<bool>("whole");
    const auto row = [](const char* line, const char* what, int area, int address, int length,
                        bool whole, int station = 1) {
        QTest::addRow("%s %s", line, what) << area << address << length << station << whole;
    };
    row("x,INPUT_BIT,12.3,1,1,", "its byte", INPUT_BYTE, 12, 1, true);
    row("x,INPUT_BIT,12.3,1,1,", "the byte after", INPUT_BYTE, 13, 9, false);
    row("x,INPUT_BIT,12.3,6,1,", "first byte of two", INPUT_BYTE, 12, 1, false);
    row("x,INPUT_BIT,12.3,5,1,", "just one byte", INPUT_BYTE, 12, 1, true);
    row("x,INPUT_BIT,12.3,1,1,", "other area", OUTPUT_BYTE, 12, 1, false);
    row("x,INPUT_BIT,12.3,1,1,", "other station", INPUT_BYTE, 12, 1, false, 2);
    row("x,MEMORY_BIT,2.5,1,1,", "its word", MEMORY_WORD, 1, 1, true);
    row("x,MEMORY_BIT,2.5,1,1,", "the word at its byte number", MEMORY_WORD, 2, 1, false);
    row("x,MEMORY_BYTE,5,2,1,", "both words", MEMORY_WORD, 2, 2, true);
    row("x,MEMORY_BYTE,5,2,1,", "first word", MEMORY_WORD, 2, 1, false);
    row("x,OUTPUT_WORD,3,1,1,", "bytes 6 and 7", OUTPUT_BYTE, 6, 2, true);
    row("x,OUTPUT_WORD,3,1,1,", "bytes 3 and 4", OUTPUT_BYTE, 3, 2, false);
    row("x,INPUT_DWORD,2,4,1,", "two double words", INPUT_BYTE, 8, 8, true);
    row("x,INPUT_DWORD,2,4,1,", "one double word", INPUT_BYTE, 8, 4, false);
    row("x,MEMORY_DWORD,5,2,1,", "words 10 and 11", MEMORY_WORD, 10, 2, true);
    row("x,MEMORY_DWORD,5,2,1,", "words 5 and 6", MEMORY_WORD, 5, 2, false);
    row("x,SPECIAL_BIT,17,1,1,", "byte 2", SPECIAL_BIT, 2, 1, true);
    row("x,SPECIAL_BIT,17,1,1,", "bit number as byte", SPECIAL_BIT, 17, 1, false);
    row("x,SPECIAL_WORD,5,1,1,", "its word", SPECIAL_WORD, 5, 1, true);
    row("x,SPECIAL_WORD,5,1,1,", "unknown type", 99, 5, 1, false);
}

void PanelState::coverage()
{
    const QByteArray line = QByteArray(QTest::currentDataTag()).split(' ').value(0);
    const Tag tag = tags(line.constData())[0];
    QFETCH(int, area);
    QFETCH(int, address);
    QFETCH(int, length);
    QFETCH(int, station);
    TagState state = initialState(tag);
    QTEST(markReceived(tag, block(area, address, length, station), 5, &state), "whole");
    QTEST(receivedAt(state) == 5, "whole");
}

void PanelState::tagInTwoBlocks()
{
    const Tag tag = tags("x,MEMORY_DWORD,5,2,1,")[0];
    TagState state = initialState(tag);
    QVERIFY(!markReceived(tag, block(MEMORY_WORD, 0, 11), 10, &state));
    QVERIFY(markReceived(tag, block(MEMORY_WORD, 11, 11), 20, &state));
    QCOMPARE(receivedAt(state), Micros{10});
    QVERIFY(!markReceived(tag, block(MEMORY_WORD, 12, 4), 30, &state));
    QVERIFY(markReceived(tag, block(MEMORY_WORD, 0, 11), 40, &state));
    QCOMPARE(receivedAt(state), Micros{20});
    QVERIFY(!markFailed(tag, block(MEMORY_WORD, 12, 4), &state));
    QVERIFY(!state.failed);
    QVERIFY(markFailed(tag, block(MEMORY_WORD, 11, 11), &state));
    QVERIFY(state.failed);
}

void PanelState::quality_data()
{
    QTest::addColumn<qint64>("received");
    QTest::addColumn<bool>("failed");
    QTest::addColumn<bool>("written");
    QTest::addColumn<bool>("silent");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, qint64 received, bool failed, bool written, bool silent,
                        const char* expected) {
        QTest::newRow(name) << received << failed << written << silent << text(expected);
    };
    // The time is 10 s, the time-out 300 ms.
    row("at first", NEVER, false, false, false, "waiting");
    row("at first, silent", NEVER, false, false, true, "no answer");
    row("given up at first", NEVER, true, false, false, "no answer");
    row("fresh", 9900000, false, false, false, "good");
    row("a slow scan", 9600000, false, false, false, "good");
    row("fresh, silent since", 9900000, false, false, true, "good");
    row("silent longer than the time-out", 9600000, false, false, true, "stale");
    row("given up since", 9900000, true, false, false, "stale");
    row("too old", 4900000, false, false, false, "stale");
    row("written", NEVER, false, true, false, "written");
    row("written, then silent", 9600000, false, true, true, "stale");
}

void PanelState::quality()
{
    QFETCH(qint64, received);
    QFETCH(bool, failed);
    QFETCH(bool, written);
    QFETCH(bool, silent);
    TagState state;
    state.receivedAt = {received};
    state.failed = failed;
    state.written = written;
    QTEST(text(qualityText(qualityOf(state, silent, 10000000, 300000))), "expected");
}

void PanelState::wrongWrite_data()
{
    QTest::addColumn<bool>("timed");
    QTest::addColumn<QString>("problem");
    QTest::newRow("w") << false << text("NAME=VALUE");
    QTest::newRow("z=1") << false << text("no tag 'z'");
    QTest::newRow("i=1") << false << text("INPUT_WORD cannot be written");
    QTest::newRow("w=65536") << false << text("outside 0 to 65535");
    QTest::newRow("w=1") << true << text("SECONDS:NAME=VALUE");
    QTest::newRow("x:w=1") << true << text("SECONDS:NAME=VALUE");
    QTest::newRow("-1:w=1") << true << text("SECONDS:NAME=VALUE");
    QTest::newRow("nan:w=1") << true << text("SECONDS:NAME=VALUE");
}

void PanelState::wrongWrite()
{
    QFETCH(bool, timed);
    QFETCH(QString, problem);
    QVector<Write> list;
    const QString said = addWrite(text(QTest::currentDataTag()), timed,
                                  tags("w,MEMORY_WORD,0,1,1,\ni,INPUT_WORD,0,1,1,"), &list);
    QVERIFY2(said.contains(problem), qPrintable(said));
    QVERIFY(list.isEmpty());
}

void PanelState::writes()
{
    const QVector<Tag> all = tags("v,MEMORY_WORD,0,1,1,\nw,MEMORY_WORD,1,1,1,");
    QVector<Write> list;
    QCOMPARE(addWrite(text("w=7"), false, all, &list), QString());
    QCOMPARE(addWrite(text("2.5:v=0x10"), true, all, &list), QString());
    QCOMPARE(list[1].due, Micros{2500000});
    QCOMPARE(writeText(list[1], all), text("v=16"));
    QVERIFY(list[0].hostKey > 0 && list[0].hostKey != list[1].hostKey);

    QCOMPARE(findWrite(list, list[0].hostKey, 1), -1); // not queued yet
    list[0].state = WriteState::Queued;
    QCOMPARE(findWrite(list, list[0].hostKey, 1), 0);
    QCOMPARE(findWrite(list, list[0].hostKey, 0), -1);
    QCOMPARE(compareReadBack(&list, 1, text("7")), -1); // read before it was done
    finishWrite(&list, 0, true, 5);
    QCOMPARE(findWrite(list, list[0].hostKey, 1), -1);
    QVERIFY(!writesGood(list));
    QCOMPARE(compareReadBack(&list, 1, text("8")), 0);
    QVERIFY(list[0].readBack == ReadBack::Different);
    list.removeLast();
    QVERIFY(!writesGood(list));
    list[0].readBack = ReadBack::Open;
    QCOMPARE(compareReadBack(&list, 1, text("7")), 0);
    QVERIFY(writesGood(list));
    QCOMPARE(compareReadBack(&list, 1, text("9")), -1); // compared once
    QVERIFY(writesGood(list));
    list[0].state = WriteState::Failed;
    QVERIFY(!writesGood(list));
}

void PanelState::replacedWrite()
{
    const QVector<Tag> all = tags("w,MEMORY_WORD,0,1,1,");
    QVector<Write> list;
    for (const char* value : {"w=1", "w=2", "w=3", "w=4"})
        QCOMPARE(addWrite(text(value), false, all, &list), QString());
    for (int i = 0; i < list.size(); ++i) {
        list[i].state = WriteState::Queued;
        list[i].queuedAt = i;
    }
    QCOMPARE(findWrite(list, list[2].hostKey, 0), 2);
    finishWrite(&list, 0, true, 10);
    finishWrite(&list, 2, true, 20); // 1 was replaced in the queue
    QVERIFY(list[1].state == WriteState::Replaced);
    QVERIFY(list[3].state == WriteState::Queued);
    QCOMPARE(compareReadBack(&list, 0, text("3")), 2);
    list.removeLast();
    QVERIFY(writesGood(list)); // the first was done and overtaken
}

void PanelState::results_data()
{
    QTest::addColumn<QString>("meaning");
    QTest::addColumn<int>("countedAs");
    QTest::newRow("0") << text("failed, the frame is sent again") << 0;
    QTest::newRow("1") << text("good") << 1;
    QTest::newRow("2") << text("unknown outcome") << 2;
    QTest::newRow("41") << text("no reply") << 41;
    QTest::newRow("52") << text("no reply") << 41;
    QTest::newRow("53") << text("unknown outcome") << 53;
    QTest::newRow("100") << text("good (remote node)") << 100;
    QTest::newRow("182") << text("reply of the wrong length (remote node)") << 171;
    QTest::newRow("200") << text("unknown outcome") << 200;
}

void PanelState::results()
{
    const int code = QByteArray(QTest::currentDataTag()).toInt();
    QTEST(resultMeaning(code), "meaning");
    Statistics statistics;
    countReply(&statistics, code);
    QFETCH(int, countedAs);
    QCOMPARE(statistics.byResult, (QMap<int, qint64>{{countedAs, 1}}));
    QCOMPARE(statistics.good, qint64{code == RESULT_GOOD || code == RESULT_GOOD_REMOTE ? 1 : 0});
    QCOMPARE(statistics.good + statistics.failed, qint64{1});
    QCOMPARE(statistics.retries, qint64{code == RESULT_RETRY ? 1 : 0});
}

QTEST_APPLESS_MAIN(PanelState)
#include "tst_panel_state.moc"
