#include "plc/controller.h"

#include <QtTest>

using namespace plc;

namespace
{
struct Plant {
    Memory memory = {};
    Machine machine = {};

    Plant() { startMachine(machine, memory, 7); }
    void run(int ms)
    {
        for (int i = 0; i < ms / 20; ++i)
            runMachine(machine, memory, 20);
    }
    int word(MemoryWordUse address) const { return memory.memoryWords.at(address); }
    int doubleWord(MemoryWordUse address) const
    {
        return memory.memoryWords.at(address) | memory.memoryWords.at(address + 1) << 16;
    }
    int outputByte(int byte) const
    {
        return static_cast<unsigned char>(packBits(memory.outputBits, byte * 8, 8).at(0));
    }
    int inputByte(int byte) const
    {
        return static_cast<unsigned char>(packBits(memory.inputBits, byte * 8, 8).at(0));
    }
};
} // namespace

class MachineTest : public QObject
{
    Q_OBJECT
private slots:
    void levelKeepsToTheSetpoint_data();
    void levelKeepsToTheSetpoint();
    void pumpEnable();
    void lights();
    void countersAndClocks();
    void aPauseIsNotMadeUpFor();
};

void MachineTest::levelKeepsToTheSetpoint_data()
{
    QTest::addColumn<int>("setpoint");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    // One step of 10 ms moves the level by up to 1.5 units beyond a switching point.
    QTest::newRow("0 empties") << 0 << 0 << 0;
    QTest::newRow("300") << 300 << 278 << 322;
    QTest::newRow("800") << 800 << 778 << 822;
    QTest::newRow("full") << 1000 << 978 << 1000;
    QTest::newRow("too high counts as full") << 65535 << 978 << 1000;
}

void MachineTest::levelKeepsToTheSetpoint()
{
    QFETCH(int, setpoint);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    Plant plant;
    plant.memory.memoryWords[MW_SETPOINT] = static_cast<quint16>(setpoint);
    plant.run(10000);
    int low = LEVEL_FULL;
    int high = 0;
    for (int i = 0; i < 100; ++i) {
        plant.run(20);
        low = qMin(low, plant.word(MW_LEVEL));
        high = qMax(high, plant.word(MW_LEVEL));
    }
    QVERIFY2(low >= lowest && high <= highest, qPrintable(QString::number(low)));
    QCOMPARE(high > low, setpoint > 0);
    QCOMPARE((plant.inputByte(IB_TANK) >> TANK_LOW & 1) != 0, plant.word(MW_LEVEL) < LEVEL_LOW);
    QCOMPARE((plant.inputByte(IB_TANK) >> TANK_HIGH & 1) != 0, plant.word(MW_LEVEL) > LEVEL_HIGH);
}

void MachineTest::pumpEnable()
{
    Plant plant;
    plant.run(1000); // from 200 up towards 500
    QCOMPARE(plant.word(MW_LEVEL), 350);
    QCOMPARE(plant.word(MW_FLOW), INFLOW_PER_S - OUTFLOW_PER_S);
    QCOMPARE(plant.outputByte(QB_PUMP), 1);
    QCOMPARE(plant.inputByte(IB_TANK), 1 << TANK_PUMP);

    plant.memory.memoryWords[MW_CONTROL] = 0;
    plant.run(1000);
    QCOMPARE(plant.word(MW_LEVEL), 250);
    QCOMPARE(plant.word(MW_FLOW), 0x10000 - OUTFLOW_PER_S);
    QCOMPARE(plant.outputByte(QB_PUMP), 0);
    plant.run(5000);
    QCOMPARE(plant.word(MW_LEVEL), 0);
    QCOMPARE(plant.word(MW_FLOW), 0);
}

void MachineTest::lights()
{
    Plant plant;
    const auto next = [&plant] {
        plant.run(LIGHT_MS);
        return plant.outputByte(QB_LIGHTS);
    };
    QCOMPARE(plant.outputByte(QB_LIGHTS), 0x01);
    QCOMPARE(next(), 0x02);
    QCOMPARE(next(), 0x04);
    plant.memory.memoryWords[MW_CONTROL] |= 1 << CONTROL_LIGHTS_REVERSE;
    QCOMPARE(next(), 0x02);
    QCOMPARE(next(), 0x01);
    QCOMPARE(next(), 0x80);
    QCOMPARE(plant.inputByte(IB_LIGHTS), 0x80);

    unpackBits(plant.memory.outputBits, QB_FREE * 8, 8, QByteArray(1, '\x5A'));
    plant.run(20);
    QCOMPARE(plant.outputByte(QB_FREE), 0x5A);
    QCOMPARE(plant.inputByte(IB_FREE), 0x5A);
}

void MachineTest::countersAndClocks()
{
    Plant plant;
    QCOMPARE(int{plant.memory.specialWords.at(SW_STATION)}, 7);
    QVERIFY(plant.memory.specialBits.testBit(SM_ALWAYS_ON));
    QVERIFY(plant.memory.specialBits.testBit(SM_BLINK));
    plant.run(500);
    QVERIFY(!plant.memory.specialBits.testBit(SM_BLINK));
    plant.run(69500);
    QCOMPARE(plant.doubleWord(MD_UPTIME_MS), 70000); // needs both words
    QCOMPARE(plant.word(MW_CYCLES), 700);
    QCOMPARE(int{plant.memory.specialWords.at(SW_SECONDS)}, 70);
    QVERIFY(plant.word(MW_PUMP_STARTS) > 10);
    QVERIFY(plant.doubleWord(MD_PUMPED) > 6500); // 100 a second were consumed

    plant.memory.memoryWords[MW_CONTROL] = 0;
    plant.memory.specialBits.setBit(SM_CLEAR_COUNTERS);
    plant.run(20);
    QCOMPARE(plant.word(MW_PUMP_STARTS), 0);
    QCOMPARE(plant.doubleWord(MD_PUMPED), 0);
    QVERIFY(!plant.memory.specialBits.testBit(SM_CLEAR_COUNTERS));
}

void MachineTest::aPauseIsNotMadeUpFor()
{
    Plant plant;
    runMachine(plant.machine, plant.memory, 3600 * 1000);
    QCOMPARE(plant.doubleWord(MD_UPTIME_MS), 1000);
    runMachine(plant.machine, plant.memory, -5);
    for (int i = 0; i < 10; ++i)
        runMachine(plant.machine, plant.memory, 3);
    QCOMPARE(plant.doubleWord(MD_UPTIME_MS), 1030); // pieces of a step add up
}

QTEST_APPLESS_MAIN(MachineTest)
#include "tst_plc_machine.moc"
