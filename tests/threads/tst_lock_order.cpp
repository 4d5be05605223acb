#include "check/locks.h"

#include <QProcess>
#include <QtTest>

#include <cstring>
#include <memory>

namespace
{
/// Takes locks by letter, L, D (`DataStorage`) and S, and gives back the one taken last for "-".
void takeAll(const char* letters)
{
    std::vector<std::unique_ptr<Locker>> held;
    for (; *letters != '\0'; ++letters) {
        if (*letters == '-')
            held.pop_back();
        else
            held.push_back(std::make_unique<Locker>(*letters == 'L'   ? &PLC_driver.listMutex
                                                    : *letters == 'D' ? &PLC_driver.storageMutex
                                                                      : &PLC_driver.stationMutex));
    }
}

/// What is said of it, and how it ended, when a process of its own takes the locks.
QString fateOf(const QString& letters)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("take"), letters});
    process.waitForFinished();
    const bool crashed = process.exitStatus() == QProcess::CrashExit;
    const QString said =
        QString::fromLatin1(process.readAllStandardError()).section(QLatin1Char('\n'), 0, 0);
    return said + (crashed ? QStringLiteral("; aborted") : QStringLiteral("; ended"));
}
} // namespace

/// In debug builds a wrong order of locks ends the program, and says which two.
class LockOrder : public QObject
{
    Q_OBJECT

private slots:
    void isChecked_data()
    {
        QTest::addColumn<QString>("fate");
        const char* const orders[][2] = {
            {"L", ""},
            {"LD", ""},
            {"LS", ""},
            {"D-L-S-D", ""},
            {"LD-S--L", ""},
            {"LL", "listMutex taken while listMutex"},
            {"DL", "listMutex taken while storageMutex"},
            {"SL", "listMutex taken while stationMutex"},
            {"DD", "storageMutex taken while storageMutex"},
            {"SD", "storageMutex taken while stationMutex"},
            {"DS", "stationMutex taken while storageMutex"},
            {"SS", "stationMutex taken while stationMutex"},
            {"LDS", "stationMutex taken while storageMutex"},
            {"LD-SD", "storageMutex taken while stationMutex"},
        };
        for (const auto& order : orders) {
            const QString wrong = QString::fromLatin1(order[1]);
            QTest::newRow(order[0])
                << (wrong.isEmpty() ? QStringLiteral("; ended")
                                    : QStringLiteral("lock order: %1 is held; aborted").arg(wrong));
        }
    }

    void isChecked() { QTEST(fateOf(QString::fromLatin1(QTest::currentDataTag())), "fate"); }
};

int main(int argc, char** argv)
{
    if (argc == 3 && std::strcmp(argv[1], "take") == 0) {
        takeAll(argv[2]);
        return 0;
    }
    QCoreApplication application(argc, argv);
    LockOrder test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_lock_order.moc"
