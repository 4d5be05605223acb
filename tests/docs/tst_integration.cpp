#include "integration.h"

#include "support/bytes.h"

#include <QtTest>

namespace
{
QByteArray sent, answer;
bool linkIsUp;

bool exchange(const QByteArray& frame, int /*replyLength*/, QByteArray* reply)
{
    sent = frame;
    *reply = answer;
    return linkIsUp;
}

Driver driver;
bool listWasLocked;

/// What a callback may do: call what takes no more than the locks behind `listMutex`.
void look(QList<RW_VAR>* /*empty*/, int /*hostKey*/, int /*one*/)
{
    listWasLocked = !driver.state->listMutex.tryLock();
    if (!listWasLocked)
        driver.state->listMutex.unlock();
    givenUp = driver.state->retVar.address + memoryWord(driver, 1, text("7"));
    driver.switchStation(1, 0);
}

const QByteArray read100 = withCrc(bytes("01 03 00 64 00 01"));
const QByteArray value100 = withCrc(bytes("01 03 02 12 34"));
} // namespace

/// The program of docs/integration.md, whose fragments this file includes.
class Integration : public QObject
{
    Q_OBJECT

    void* library = nullptr;
    int result = -1;

    Turn next(const QByteArray& reply = QByteArray())
    {
        answer = reply;
        return turn(driver, exchange, &result);
    }

private slots:
    void init()
    {
        library = load(KP410_LIBRARY, &driver);
        QVERIFY2(library, dlerror());
        settings = ComInfo();
        ended.clear();
        givenUp = 0;
        linkIsUp = true;
        QCOMPARE(setUp(driver, {tag(MEMORY_WORD, text("100"), 1, 1)}), 1);
    }
    void cleanup()
    {
        if (library)
            dlclose(library);
    }

    void aValueIsReadAndOneWritten()
    {
        QCOMPARE(next(value100), Turn::Done);
        QCOMPARE(sent, read100);
        QCOMPARE(result, int{RESULT_GOOD});
        QCOMPARE(memoryWord(driver, 1, text("100")), 0x1234);

        QVERIFY(writeMemoryWord(driver, 1, text("10"), 0xABCD, 7));
        const QByteArray write = withCrc(bytes("01 06 00 0A AB CD"));
        QCOMPARE(next(write), Turn::Done);
        QCOMPARE(sent, write);
        QCOMPARE(ended.size(), 1);
        QCOMPARE(ended.at(0).key, 7);
        QCOMPARE(ended.at(0).state, int{FINISH_DONE});
    }

    void aLostLinkLosesNothing()
    {
        linkIsUp = false;
        QCOMPARE(next(), Turn::LinkLost);
        QCOMPARE(settings.retryCount, 0);
        linkIsUp = true;
        sent.clear();
        QCOMPARE(next(value100), Turn::Done);
        QCOMPARE(sent, read100);
        QCOMPARE(memoryWord(driver, 1, text("100")), 0x1234);
    }

    void everyThirdFailureGivesUp()
    {
        for (const int code : {0, 0, 41, 0, 0, 41}) {
            QCOMPARE(next(), Turn::Done);
            QCOMPARE(result, code);
        }
        QCOMPARE(givenUp, 2);
    }

    void codesHaveTheirRows()
    {
        QCOMPARE(meaningOf(RESULT_GOOD), &RESULTS[LOCAL_GOOD]);
        QCOMPARE(meaningOf(22), &RESULTS[LOCAL_CORRUPT]);
        QCOMPARE(meaningOf(71), &RESULTS[LOCAL_WRONG_LENGTH]);
        QCOMPARE(meaningOf(152), &RESULTS[REMOTE_MISSING]);
        for (const int code : {int{RESULT_RETRY}, 2, 23, int{RESULT_UNKNOWN}})
            QVERIFY(!meaningOf(code));
    }

    void whatCannotBeTheReplyIsToldByItsHead()
    {
        for (const char* own : {"", "01", "01 03", "01 03 02 12 34", "01 83 02"})
            QVERIFY2(mayAnswer(read100, bytes(own)), own);
        for (const char* foreign : {"02 03", "01 06 00 0A AB CD", "01 86 02", "02 83 02"})
            QVERIFY2(!mayAnswer(read100, bytes(foreign)), foreign);
    }

    void aFullListTakesNoWrite()
    {
        for (int i = 0; i < LIST_LIMIT; ++i)
            QVERIFY(writeMemoryWord(driver, 1, QString::number(i), i, 1));
        QVERIFY(!writeMemoryWord(driver, 1, text("5000"), 1, 1));
    }

    void nothingToSendIsNotIdle()
    {
        QCOMPARE(setUp(driver, {}), 0);
        for (int i = 0; i < 6; ++i)
            QVERIFY(writeMemoryWord(driver, 1, QString::number(i), i, 1));
        QString turns;
        for (int i = 0; i < 8; ++i)
            turns +=
                QLatin1Char(next(withCrc(bytes("01 06 00 00 00 00"))) == Turn::Done ? 'W' : '-');
        QCOMPARE(turns, text("WWWWW-W-"));
    }

    void newTagsUnderAPendingFrame()
    {
        driver.nextFrame();
        QList<VAR_DESC> tags = {tag(MEMORY_WORD, text("100"), 1, 1),
                                tag(MEMORY_WORD, text("200"), 1, 1)};
        QCOMPARE(driver.setVariables(&tags), 2);
        QCOMPARE(next(value100), Turn::Done);
        QCOMPARE(sent, read100);
        next();
        QCOMPARE(sent, withCrc(bytes("01 03 00 C8 00 01")));
    }

    void callbacksRunUnderTheListLock()
    {
        driver.setCallbacks(nullptr, look);
        settings.retryLimit = 0;
        next();
        QVERIFY(listWasLocked);
        QCOMPARE(givenUp, 100);
        QVERIFY(driver.state->stationMap.contains(1));
    }
};

QTEST_APPLESS_MAIN(Integration)
#include "tst_integration.moc"
