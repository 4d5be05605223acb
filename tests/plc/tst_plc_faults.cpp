// The texts of faults, which requests they hit, and what they make of a reply.
#include "plc/fault_effect.h"
#include "plc/fault_text.h"
#include "support/cases.h"
#include "support/frames.h"

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

QString shown(QStringList seen)
{
    seen.removeAll(QString());
    return seen.isEmpty() ? text("nothing") : seen.join(QLatin1Char(' '));
}

/// Hex, bytes that cannot be foreseen as "??".
QString masked(const QByteArray& bytes, int from, int count)
{
    QString hex = text(bytes.toHex());
    return hex.replace(2 * from, 2 * count, QStringLiteral("??").repeated(count));
}

QString parsed(const Given& in)
{
    const ParsedFault parsed = parseFault(text(in[0]));
    return parsed.expected.isEmpty() ? written(parsed.fault) : parsed.expected;
}

QString hitRequests(const Given& in)
{
    FaultPlan plan = makeFaultPlan(planned(in[0]), in[1].toUInt());
    QString hit;
    for (const QByteArray& stations : parts(in[2], ' '))
        for (int i = 0; i < stations.split('*').value(1, "1").toInt(); ++i)
            hit += QString::number(takeFaults(plan, stations.split('*').first().toInt()).size());
    return hit;
}

QString effect(const Given& in)
{
    FaultPlan plan = makeFaultPlan(planned(in[0]), 1);
    const QList<Fault> faults = takeFaults(plan, 1);
    const Sending sending =
        applyFaults(faults, bytes("01 03 000A 0001 A408"), bytes(in[1]), bytes(in[2]), plan.noise);
    int extended = 0;
    for (const Fault& fault : faults)
        extended += fault.kind == FAULT_EXTEND && !in[1].isEmpty() ? fault.parameter : 0;
    return shown({text(sending.echo.toHex()), masked(sending.noise, 0, sending.noise.size()),
                  masked(sending.reply, sending.reply.size() - extended, extended)});
}

QString schedules(const Given& in)
{
    const FaultPlan plan = makeFaultPlan(planned(in[0]), 1);
    Generator noise = plan.noise;
    Sending sending = applyFaults(plan.faults, {}, QByteArray(in[1].toInt(), 'r'), {}, noise);
    sending.noise = QByteArray(in[2].toInt(), 'n');
    QStringList seen;
    for (const TimedBytes& timed : schedule(sending))
        seen << QStringLiteral("%1:%2").arg(timed.atMs).arg(text(timed.bytes));
    return shown(seen);
}
} // namespace

class FaultsTest : public CaseTest
{
    Q_OBJECT
public:
    FaultsTest()
        : CaseTest(CASES, {{"parsed", 1, parsed},
                           {"hitRequests", 3, hitRequests},
                           {"effect", 3, effect},
                           {"schedules", 3, schedules}})
    {
    }
private slots:
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
};

QTEST_APPLESS_MAIN(FaultsTest)
#include "tst_plc_faults.moc"
