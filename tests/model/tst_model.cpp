#include "model/session.h"

#include <QtTest>

#include <random>

#if defined(__arm__) // emulated, or a panel
constexpr int OPERATIONS = 20000;
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int OPERATIONS = 40000;
#else
constexpr int OPERATIONS = 300000;
#endif

/// Random calls of a runtime, and replies of all kinds, on the driver and on the model: no
/// difference. KP410_MODEL_OPERATIONS and KP410_MODEL_SEED choose other ones.
class RandomCalls : public QObject
{
    Q_OBJECT

private slots:
    void sameAsTheModel_data()
    {
        QTest::addColumn<int>("length"); // of one sequence, from a driver at rest
        for (const int length : {20, 300, 5000})
            QTest::newRow(qPrintable(QString::number(length))) << length;
    }

    void sameAsTheModel()
    {
        QFETCH(int, length);
        bool given = false;
        const int wanted = qgetenv("KP410_MODEL_OPERATIONS").toInt(&given);
        const int operations = (given ? wanted : OPERATIONS) / 3;
        const int seed = qgetenv("KP410_MODEL_SEED").toInt();
        std::mt19937 random(static_cast<unsigned>(seed * 10 + length));
        for (int done = 0; done < operations; done += length) {
            QVector<Operation> sequence(length);
            for (Operation& operation : sequence) {
                for (unsigned char& byte : operation.bytes)
                    byte = static_cast<unsigned char>(random());
            }
            if (runAll(sequence).isEmpty())
                continue;
            const QVector<Operation> shorter = shrink(sequence);
            QFAIL(qPrintable(text("%1 calls, shrunk to %2:\n", length, shorter.size()) +
                             runAll(shorter)));
        }
    }
};

QTEST_APPLESS_MAIN(RandomCalls)
#include "tst_model.moc"
