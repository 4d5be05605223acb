// What the loop makes of the driver's record and callbacks, with a driver of the test's own.
#include "account.h"
#include "callbacks.h"
#include "tag_file.h"

#include <QtTest>

class PanelAccount : public QObject
{
    Q_OBJECT
private slots:
    void servedVariable_data();
    void servedVariable();
    void callbackOfAWrite_data();
    void callbackOfAWrite();
    void answerAfterSilence();
};

namespace
{

RW_VAR record;

RW_VAR* fakeDataCom(QByteArray*, int)
{
    return &record;
}

int fakeGetRegisterData(int, int, QString*, int, QByteArray* out, int count)
{
    *out = QByteArray(2 * count, '\x01');
    return 1;
}

const QString READ_VALUE = QStringLiteral("257");

Panel panelWithOneTag()
{
    Panel panel;
    panel.driver.dataCom = fakeDataCom;
    panel.driver.getRegisterData = fakeGetRegisterData;
    panel.clock = [] { return Micros{5}; };
    panel.tags = parseTags(QString(), QStringLiteral("x,MEMORY_WORD,10,1,1,")).tags;
    panel.states = {initialState(panel.tags[0])};
    record = RW_VAR();
    record.regType = MEMORY_WORD;
    record.address = 8;
    record.length = 4;
    record.station = 1;
    return panel;
}

void reply(Panel* panel, int bytes)
{
    Exchanged exchanged;
    exchanged.reply = QByteArray(bytes, 'r');
    takeReply(panel, &exchanged, 1, 13);
}

} // namespace

void PanelAccount::servedVariable_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("rwFlag");
    QTest::addColumn<int>("framesDone");
    QTest::addColumn<int>("cyclicReads");
    QTest::addColumn<bool>("received");
    QTest::addColumn<bool>("failed");
    const int good = RESULT_GOOD, retry = RESULT_RETRY, noReply = 41;
    // Two frames make up the request; the record names an earlier variable until both are done.
    QTest::newRow("read finished") << good << int(RW_READ) << 2 << 1 << true << false;
    QTest::newRow("first frame of two") << good << int(RW_READ) << 1 << 0 << false << false;
    QTest::newRow("write finished") << good << int(RW_WRITE) << 2 << 0 << false << false;
    QTest::newRow("read again") << retry << int(RW_READ) << 0 << 0 << false << false;
    QTest::newRow("read given up") << noReply << int(RW_READ) << 0 << 1 << false << true;
    QTest::newRow("write given up") << noReply << int(RW_WRITE) << 0 << 0 << false << false;
}

void PanelAccount::servedVariable()
{
    Panel panel = panelWithOneTag();
    panel.info.frameCount = 2;
    QFETCH(int, framesDone);
    QFETCH(bool, received);
    panel.info.framesDone = framesDone;
    QFETCH(int, result);
    QFETCH(int, rwFlag);
    record.result = result;
    record.rwFlag = rwFlag;
    reply(&panel, 13);
    const TagState& state = panel.states[0];
    QTEST(int(panel.statistics.cyclicReads), "cyclicReads");
    QTEST(receivedAt(state) != NEVER, "received");
    QTEST(state.failed, "failed");
    QCOMPARE(state.value, received ? READ_VALUE : QString());
}

void PanelAccount::callbackOfAWrite_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("subKey");
    QTest::addColumn<bool>("finished");
    QTest::addColumn<bool>("done");
    QTest::newRow("done") << int(FINISH_DONE) << 0 << true << true;
    QTest::newRow("failed") << int(FINISH_FAILED) << 0 << true << false;
    QTest::newRow("of another") << int(FINISH_DONE) << 1 << false << false;
}

void PanelAccount::callbackOfAWrite()
{
    QFETCH(int, state);
    QFETCH(int, subKey);
    QFETCH(bool, finished);
    QFETCH(bool, done);
    Panel panel = panelWithOneTag();
    QCOMPARE(addWrite(QStringLiteral("x=7"), false, panel.tags, &panel.writes), QString());
    panel.writes[0].state = WriteState::Queued;
    recordFinish(0, panel.writes[0].hostKey, subKey, state);
    takeDriverCallbacks(&panel, nullptr);
    QCOMPARE(panel.writes[0].state != WriteState::Queued, finished);
    QCOMPARE(panel.writes[0].state == WriteState::Done, done);
    // A value is shown once it was received or its write acknowledged, not before.
    QCOMPARE(panel.states[0].value, done ? QStringLiteral("7") : QString());
    QCOMPARE(panel.statistics.callbacks.size(), 1);
    QVERIFY(takeCallbacks().isEmpty());
    if (!done)
        return;

    record.result = RESULT_GOOD;
    reply(&panel, 13);
    QCOMPARE(panel.states[0].value, READ_VALUE);
    QVERIFY(!panel.states[0].written);
    QVERIFY(panel.writes[0].readBack == ReadBack::Different);
}

void PanelAccount::answerAfterSilence()
{
    Panel panel = panelWithOneTag();
    record.result = RESULT_RETRY;
    reply(&panel, 0);
    QVERIFY(panel.silentSince.contains(1));
    QVERIFY(panel.events.takeLast().text.endsWith(QStringLiteral("does not answer")));
    reply(&panel, 0);
    QVERIFY(panel.events.isEmpty());
    // The answer brought another block: this tag is still as old as it was.
    record.result = RESULT_GOOD;
    record.address = 100;
    reply(&panel, 13);
    QVERIFY(panel.silentSince.isEmpty());
    QVERIFY(panel.events.takeLast().text.contains(QStringLiteral("answers again")));
    QVERIFY(panel.states[0].failed);
}

QTEST_APPLESS_MAIN(PanelAccount)
#include "tst_panel_account.moc"
