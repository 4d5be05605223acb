#include "trace/runner.h"

#include <QDir>
#include <QtTest>

#include <cstring>

namespace
{
/// The file that the environment names, or all traces of the folder.
QStringList traceFiles()
{
    const QString one = QString::fromLocal8Bit(qgetenv("KP410_TRACE_FILE"));
    if (!one.isEmpty())
        return QStringList(one);
    const QDir folder(text(KP410_TRACES));
    QStringList files;
    for (const QString& name : folder.entryList(QStringList(text("*.trace"))))
        files << folder.filePath(name);
    return files;
}
} // namespace

/// Every trace, each case a row, against the library as a runtime loads it: in a process that has,
/// visible to all, things of the driver's names.
class Traces : public QObject
{
    Q_OBJECT

    void* const namesake = dlopen(NAMESAKE, RTLD_NOW | RTLD_GLOBAL);
    Library library{KP410_LIBRARY};
    QList<TraceCase> cases;

    /// What a driver is that nobody has used.
    bool isNew() const
    {
        const Communication_Protocol& driver = *BIND(library, PLC_driver);
        const RW_VAR& served = driver.retVar;
        return !driver.comInfo && !driver.finishCallback && !driver.failCallback &&
               driver.currentSource == SOURCE_NONE && driver.stationMap.isEmpty() &&
               (served.hostKey | served.result | served.length) == 0 && served.label.isEmpty() &&
               BIND(library, DataStorage)->isEmpty() && !*BIND(library, LB) &&
               !*BIND(library, LW) && !*BIND(library, RWI);
    }

private slots:
    void setUp()
    {
        QVERIFY2(namesake, dlerror());
        QVERIFY2(library.isLoaded(), dlerror());
        QVERIFY(isNew());
        QCOMPARE(BIND(library, QueryFinishFlag)(), 1);
        int areas[3];
        BIND(library, FlashLocalRegister)(&areas[0], &areas[1], &areas[2]);
        QCOMPARE(*BIND(library, LB), static_cast<void*>(&areas[0]));
        QCOMPARE(*BIND(library, LW), static_cast<void*>(&areas[1]));
        QCOMPARE(*BIND(library, RWI), static_cast<void*>(&areas[2]));
        ComInfo info, expected;
        std::memset(&info, 0x5A, sizeof info);
        expected = info;
        expected.hostArea40 = expected.hostArea52 = 0;
        BIND(library, SetComInfo)(&info);
        QCOMPARE(std::memcmp(&info, &expected, sizeof info), 0);
        BIND(library, EnCommStation)(5, 0);
        library.reload();
        QVERIFY(isNew());
    }

    void run_data()
    {
        QTest::addColumn<int>("index");
        for (const QString& file : traceFiles()) {
            const QList<TraceCase> found = traceCases(file);
            QVERIFY2(!found.isEmpty(), qPrintable(file));
            for (const TraceCase& trace : found) {
                const QString row = QFileInfo(file).baseName() + text(": ") + trace.name;
                QTest::newRow(qPrintable(row)) << cases.size();
                cases << trace;
            }
        }
    }

    void run()
    {
        QFETCH(int, index);
        Runner runner(library);
        runner.reset();
        for (const TraceLine& line : cases.at(index).lines) {
            const QString wrong = runner.run(line);
            QVERIFY2(wrong.isEmpty(), qPrintable(text("line %1: ", line.number) + wrong));
        }
        QCOMPARE(runner.ending(), QString());
    }
};

QTEST_APPLESS_MAIN(Traces)
#include "tst_traces.moc"
