// The texts of faults, which requests they hit, and what they make of a reply.
#include "frames.h"
#include "panel/cases.h"
#include "plc/fault_effect.h"
#include "plc/fault_text.h"

using namespace plc;

namespace
{
QString written(const Fault& fault)
{
    static const char* const forms[] = {"chance", "requests", "from", "every"};
    QStringList numbers;
    for (const qint64 number : fault.numbers)
        numbers << QString::number(number);
    if (fault.when == WHEN_PERCENT)
        numbers << QString::number(fault.percent);
    return QStringLiteral("%1 %2, %3 %4, station %5")
        .arg(QLatin1String(FAULT_KINDS.at(size_t(fault.kind)).name))
        .arg(fault.parameter)
        .arg(QLatin1String(forms[fault.when]), numbers.join(QLatin1Char(' ')))
        .arg(fault.station);
}

QList<Fault> planned(const QByteArray& texts)
{
    QList<Fault> faults;
    for (const QByteArray& one : parts(texts, ' ')) {
        const ParsedFault parsed = parseFault(text(one));
        if (!parsed.expected.isEmpty())
            qFatal("%s: expected %s", one.constData(), qPrintable(parsed.expected));
        faults << parsed.fault;
    }
    return faults;
}

QString shown(const QStringList& seen)
{
    return seen.isEmpty() ? text("nothing") : seen.join(QLatin1Char(' '));
}

/// Hex, bytes that cannot be foreseen as "??".
QString masked(const QByteArray& bytes, int from, int count)
{
    QString hex = text(bytes.toHex());
    return hex.replace(2 * from, 2 * count, QStringLiteral("??").repeated(count));
}
} // namespace

class FaultsTest : public QObject
{
    Q_OBJECT
private slots:
    void everyKindStandsAtItsNumber()
    {
        for (size_t i = 0; i < FAULT_KINDS.size(); ++i)
            QCOMPARE(size_t(FAULT_KINDS.at(i).kind), i);
    }

    void goodText_data() { addCases(); }
    void goodText()
    {
        const ParsedFault parsed = parseFault(text(given(1)[0]));
        QCOMPARE(parsed.expected, QString());
        QTEST(written(parsed.fault), "expected");
    }

    void wrongText_data() { addCases(); }
    void wrongText() { verifyContains(parseFault(text(given(1)[0])).expected); }

    void hitRequests_data() { addCases(); }
    void hitRequests()
    {
        const QList<QByteArray> case_ = given(3);
        FaultPlan plan = makeFaultPlan(planned(case_[0]), case_[1].toUInt());
        QStringList hit;
        for (const QByteArray& stations : parts(case_[2], ' '))
            for (int i = 0; i < stations.split('*').value(1, "1").toInt(); ++i) {
                const int taken = takeFaults(plan, stations.split('*').first().toInt()).size();
                hit << QString::number(taken);
            }
        QTEST(hit.join(QString()), "expected");
    }

    void chanceIsAsAskedFor()
    {
        // 20,000 throws: three standard deviations of the number of hits.
        const struct {
            const char* fault;
            qint64 least, most;
        } shares[] = {{"crc@1%", 157, 243}, {"crc@50%", 9787, 10213}, {"crc@100%", 20000, 20000}};
        for (const auto& share : shares) {
            FaultPlan plan = makeFaultPlan(planned(share.fault), 7);
            for (int i = 0; i < 20000; ++i)
                takeFaults(plan, 1);
            const qint64 seen = plan.hits.at(FAULT_CRC);
            QVERIFY2(seen >= share.least && seen <= share.most, qPrintable(QString::number(seen)));
        }
    }

    void effect_data() { addCases(); }
    void effect()
    {
        const QList<QByteArray> case_ = given(3);
        FaultPlan plan = makeFaultPlan(planned(case_[0]), 1);
        const QList<Fault> faults = takeFaults(plan, 1);
        const QByteArray reply = case_[1].isEmpty() ? QByteArray() : bytes(case_[1]);
        const QByteArray before = case_[2].isEmpty() ? QByteArray() : bytes(case_[2]);
        const Sending sending =
            applyFaults(faults, bytes("01 03 000A 0001 A408"), reply, before, plan.noise);
        int extended = 0;
        for (const Fault& fault : faults)
            extended += fault.kind == FAULT_EXTEND && !reply.isEmpty() ? fault.parameter : 0;
        QStringList seen = {text(sending.echo.toHex()),
                            masked(sending.noise, 0, sending.noise.size()),
                            masked(sending.reply, sending.reply.size() - extended, extended)};
        seen.removeAll(QString());
        QTEST(shown(seen), "expected");
    }

    void noiseDiffersByteByByteAndSeedBySeed()
    {
        Generator one = makeFaultPlan({}, 1).noise;
        Generator same = makeFaultPlan({}, 1).noise;
        Generator other = makeFaultPlan({}, 2).noise;
        const QByteArray noise = randomBytes(64, one);
        QCOMPARE(randomBytes(64, same), noise);
        QVERIFY(randomBytes(64, other) != noise);
        QVERIFY(randomBytes(64, one) != noise);
        QVERIFY(noise.count(noise.at(0)) < 16);
    }

    void schedules_data() { addCases(); }
    void schedules()
    {
        const QList<QByteArray> case_ = given(3);
        Sending sending;
        const FaultPlan plan = makeFaultPlan(planned(case_[0]), 1);
        Generator noise = plan.noise;
        sending = applyFaults(plan.faults, {}, QByteArray(case_[1].toInt(), 'r'), {}, noise);
        sending.noise = QByteArray(case_[2].toInt(), 'n');
        QStringList seen;
        for (const TimedBytes& timed : schedule(sending))
            seen << QStringLiteral("%1:%2").arg(timed.atMs).arg(text(timed.bytes));
        QTEST(shown(seen), "expected");
    }
};

QTEST_APPLESS_MAIN(FaultsTest)
#include "tst_plc_faults.moc"
