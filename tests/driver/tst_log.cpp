#include "driver/log.h"
#include "support/driver.h"

#include <QDir>
#include <QFile>
#include <QRegExp>
#include <QtTest>

class Log : public QObject
{
    Q_OBJECT

    static QByteArray logged()
    {
        QFile file(text("debug.log"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private slots:
    void lines()
    {
        const struct {
            int milliseconds;
            QByteArray message, line;
        } rows[] = {{42, "abc", "2026.03.02.09:05:07.42:abc\n"},
                    {200, "abc", "2026.03.02.09:05:07.200:abc\n"},
                    {250, "abc", "2026.03.02.09:05:07.250:abc\n"},
                    {0, "", "2026.03.02.09:05:07.0:\n"},
                    {999, "\xE4", "2026.03.02.09:05:07.999:\xE4\n"}};
        for (const auto& row : rows) {
            const QDateTime when(QDate(2026, 3, 2), QTime(9, 5, 7, row.milliseconds));
            QCOMPARE(logLine(when, row.message.constData()), row.line);
        }
    }

    /// One test, because the first line of a process is special.
    void firstLineStartsTheFileAfresh()
    {
        QDir().mkdir(text("log_test"));
        QVERIFY(QDir::setCurrent(text("log_test")));
        QFile old(text("debug.log"));
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("of another process\n");
        old.close();
        customMessageHandler(QtDebugMsg, nullptr);
        QCOMPARE(logged(), QByteArray("of another process\n"));
        customMessageHandler(QtDebugMsg, "one");
        customMessageHandler(QtFatalMsg, "two");
        const QRegExp twoLines(text("\\d{4}(\\.\\d\\d){3}:\\d\\d:\\d\\d\\.\\d{1,3}:one\n"
                                    "\\d{4}(\\.\\d\\d){3}:\\d\\d:\\d\\d\\.\\d{1,3}:two\n"));
        QVERIFY2(twoLines.exactMatch(QString::fromLatin1(logged())), logged().constData());
        QVERIFY(QFile::remove(text("debug.log")));
        QVERIFY(QDir().mkdir(text("debug.log"))); // cannot be opened: the line is lost
        customMessageHandler(QtWarningMsg, "three");
        QVERIFY(QDir().rmdir(text("debug.log")));
        QVERIFY(QDir::setCurrent(text("..")));
    }
};

QTEST_APPLESS_MAIN(Log)
#include "tst_log.moc"
