#include "driver/dispatch.h"
#include "driver/log.h"
#include "support/driver.h"
#include "support/reply.h"

#include <QDir>
#include <QFile>
#include <QRegExp>
#include <QtTest>

#include <climits>

namespace
{
int waitingDuringFail = -1;
bool locked = false;

void noteQueueAndLock(QList<RW_VAR>*, int, int)
{
    waitingDuringFail = PLC_driver.writeList.size();
    locked = !PLC_driver.listMutex.tryLock();
    if (!locked)
        PLC_driver.listMutex.unlock();
}

void dropSettings(int, int, int, int)
{
    SetComInfo(nullptr);
}

void queueWrite(int regType, int key = 0)
{
    RW_VAR var = writeOf(regType, 37, 1, bytes("0100"), key);
    AddListWriteVar(&var, ADD_CHECKED);
}

} // namespace

/// What can only be seen from inside the driver, or with code of the runtime in its callbacks.
class Inside : public QObject
{
    Q_OBJECT

private slots:
    void init() { resetDriver(); }

    void resultOfNoOutcome()
    {
        for (const int none : {8, -1, INT_MIN})
            QCOMPARE(GetDriverReturnValue(none), 200);
    }

    void failureIsReportedBeforeThePurgeUnderTheLock()
    {
        RegistCallBackFuncIntf(onFinish, noteQueueAndLock);
        for (int address = 10; address < 12; ++address) {
            RW_VAR var = writeOf(MEMORY_WORD, address, 1, bytes("0100"));
            AddListWriteVar(&var, ADD_UNCHANGED);
        }
        request();
        answer();
        QCOMPARE(waitingDuringFail, 1);
        QVERIFY(locked);
        QVERIFY(PLC_driver.writeList.isEmpty());
    }

    void callbackThatTakesTheSettingsAway()
    {
        RegistCallBackFuncIntf(dropSettings, onFail);
        queueWrite(MEMORY_WORD, 5);
        request();
        QCOMPARE(answer(), 46);
        SetComInfo(&settings);
        queueWrite(INPUT_WORD, 6); // given up without a frame
        QVERIFY(request().isEmpty());
        QVERIFY(PLC_driver.writeList.isEmpty());
        QCOMPARE(events, QStringList() << failEvent(0, 5, 1) << failEvent(0, 6, 1));
    }

    /// The memory of an answered frame is used again, but never so that the runtime could tell.
    void answeredFrameIsNotSeenAgain()
    {
        PLC_driver.readList << variable(AREA_MEMORY, 0, 1) << variable(AREA_MEMORY, 1, 1);
        const QByteArray first = bytes("010300000001840A");
        const QByteArray second = bytes("010300010001D5CA");
        const auto serve = [] { return answer(goodReply(*ComCommunication(), 7)); };

        ComCommunication()->reserved1 = 5;
        ComCommunication()->frame.append(first);
        QCOMPARE(serve(), 1);
        QCOMPARE(ComCommunication()->frame, second);
        QCOMPARE(ComCommunication()->reserved1, 0);

        const QList<Protocol> kept = PLC_driver.frameList;
        QCOMPARE(serve(), 1);
        QCOMPARE(ComCommunication()->frame, first);
        QCOMPARE(kept.at(0).frame, second);
        QCOMPARE(serve(), 1);

        Protocol byHand;
        byHand.var.nodeId = settings.ownNode;
        PLC_driver.frameList << byHand;
        QCOMPARE(answer(), 1);
        QVERIFY(PLC_driver.frameList.isEmpty());
    }

    void lineOfTheLog()
    {
        const char* const lines[] = {"2026.03.02.09:05:07.0:\xE4\n",
                                     "2026.03.02.09:05:07.42:\xE4\n",
                                     "2026.03.02.09:05:07.200:\xE4\n"};
        int row = 0;
        for (const int milliseconds : {0, 42, 200}) {
            const QDateTime when(QDate(2026, 3, 2), QTime(9, 5, 7, milliseconds));
            QCOMPARE(logLine(when, "\xE4"), QByteArray(lines[row++]));
        }
    }

    /// One test, because the first line of a process is special.
    void firstLineStartsTheLogAfresh()
    {
        QDir().mkdir(text("log_test"));
        QVERIFY(QDir::setCurrent(text("log_test")));
        QFile file(text("debug.log"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("of another process\n");
        file.close();
        customMessageHandler(QtDebugMsg, nullptr);
        QCOMPARE(file.size(), 19LL);
        customMessageHandler(QtDebugMsg, "one");
        customMessageHandler(QtFatalMsg, "two");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QRegExp twoLines(text("[\\d.:]{20,23}:one\n[\\d.:]{20,23}:two\n"));
        QVERIFY(twoLines.exactMatch(QString::fromLatin1(file.readAll())));
        file.remove();
        QVERIFY(QDir().mkdir(text("debug.log"))); // cannot be opened: the line is lost
        customMessageHandler(QtWarningMsg, "three");
        QVERIFY(QDir().rmdir(text("debug.log")));
        QVERIFY(QDir::setCurrent(text("..")));
    }
};

QTEST_APPLESS_MAIN(Inside)
#include "tst_inside.moc"
