#include "trace/runner.h"

#include <QDir>
#include <QtTest>

/// Every trace of the folder, each case a row, against the library as a runtime loads it: in a
/// process that has, visible to all, things of the driver's names.
class Traces : public QObject
{
    Q_OBJECT

    void* const namesake = dlopen(NAMESAKE, RTLD_NOW | RTLD_GLOBAL);
    Library library{KP410_LIBRARY};
    QList<TraceCase> cases;

private slots:
    void initTestCase()
    {
        QVERIFY2(namesake, dlerror());
        QVERIFY2(library.isLoaded(), dlerror());
        QCOMPARE(BIND(library, QueryFinishFlag)(), 1);
        int areas[3];
        BIND(library, FlashLocalRegister)(&areas[0], &areas[1], &areas[2]);
        QCOMPARE(*BIND(library, LB), static_cast<void*>(&areas[0]));
        QCOMPARE(*BIND(library, LW), static_cast<void*>(&areas[1]));
        QCOMPARE(*BIND(library, RWI), static_cast<void*>(&areas[2]));
    }

    void run_data()
    {
        QTest::addColumn<int>("index");
        const QDir folder(QString::fromLatin1(KP410_TRACES));
        for (const QString& name : folder.entryList(QStringList(QString::fromLatin1("*.trace")))) {
            const QList<TraceCase> found = traceCases(folder.filePath(name));
            QVERIFY2(!found.isEmpty(), qPrintable(name));
            for (const TraceCase& trace : found) {
                const QString row = name.section(QLatin1Char('.'), 0, 0) + QLatin1String(": ");
                QTest::newRow(qPrintable(row + trace.name)) << cases.size();
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
            QVERIFY2(wrong.isEmpty(),
                     qPrintable(QString::fromLatin1("line %1: %2").arg(line.number).arg(wrong)));
        }
        const QString wrong = runner.ending();
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }

    void unloadedAndLoadedAgainItIsNew()
    {
        BIND(library, EnCommStation)(5, 0);
        library.reload();
        QVERIFY(BIND(library, PLC_driver)->stationMap.isEmpty());
        QVERIFY(!BIND(library, PLC_driver)->comInfo);
        QVERIFY(BIND(library, DataStorage)->isEmpty());
        QVERIFY(!*BIND(library, LB));
    }
};

QTEST_APPLESS_MAIN(Traces)
#include "tst_traces.moc"
