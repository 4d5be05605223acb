#include "machine.h"

#include <algorithm>

namespace plc
{
namespace
{
constexpr int STEP_MS = 10;
constexpr int CYCLE_MS = 100;
constexpr int BLINK_MS = 500;
constexpr int LIGHTS = 8;

bool controlBit(const Memory& memory, ControlBit bit)
{
    return (memory.memoryWords.at(MW_CONTROL) >> bit & 1) != 0;
}

void setWord(Memory& memory, MemoryWordUse address, qint64 value)
{
    memory.memoryWords[address] = static_cast<quint16>(value & 0xFFFF);
}

void setDoubleWord(Memory& memory, MemoryWordUse address, qint64 value)
{
    memory.memoryWords[address] = static_cast<quint16>(value & 0xFFFF);
    memory.memoryWords[address + 1] = static_cast<quint16>(value >> 16 & 0xFFFF);
}

void switchPump(Machine& machine, const Memory& memory)
{
    const int setpoint = std::min<int>(memory.memoryWords.at(MW_SETPOINT), LEVEL_FULL);
    const int level = machine.levelMilli / 1000;
    const bool wasOn = machine.pump;
    if (!controlBit(memory, CONTROL_PUMP_ENABLE) ||
        level >= std::min(setpoint + HYSTERESIS, LEVEL_FULL))
        machine.pump = false;
    else if (level <= setpoint - HYSTERESIS)
        machine.pump = true;
    machine.pumpStarts += machine.pump && !wasOn ? 1 : 0;
}

/// @return the change per second
int moveLevel(Machine& machine)
{
    const int inflow = machine.pump ? INFLOW_PER_S : 0;
    const int before = machine.levelMilli;
    machine.pumpedMilli += inflow * STEP_MS;
    machine.levelMilli =
        std::clamp(before + (inflow - OUTFLOW_PER_S) * STEP_MS, 0, LEVEL_FULL * 1000);
    return (machine.levelMilli - before) / STEP_MS;
}

void moveLight(Machine& machine, const Memory& memory)
{
    machine.lightMs += STEP_MS;
    if (machine.lightMs < LIGHT_MS)
        return;
    machine.lightMs = 0;
    const int next = controlBit(memory, CONTROL_LIGHTS_REVERSE) ? LIGHTS - 1 : 1;
    machine.light = (machine.light + next) % LIGHTS;
}

void clearCounters(Machine& machine, Memory& memory)
{
    if (!memory.specialBits.testBit(SM_CLEAR_COUNTERS))
        return;
    memory.specialBits.clearBit(SM_CLEAR_COUNTERS);
    machine.pumpStarts = 0;
    machine.pumpedMilli = 0;
}

void showMachine(const Machine& machine, Memory& memory, int flow)
{
    const int level = machine.levelMilli / 1000;
    setWord(memory, MW_LEVEL, level);
    setWord(memory, MW_FLOW, flow);
    setWord(memory, MW_CYCLES, machine.uptimeMs / CYCLE_MS);
    setDoubleWord(memory, MD_UPTIME_MS, machine.uptimeMs);
    setWord(memory, MW_PUMP_STARTS, machine.pumpStarts);
    setDoubleWord(memory, MD_PUMPED, machine.pumpedMilli / 1000);

    memory.outputBits.setBit(QB_PUMP * 8, machine.pump);
    memory.inputBits.setBit(IB_TANK * 8 + TANK_PUMP, machine.pump);
    memory.inputBits.setBit(IB_TANK * 8 + TANK_LOW, level < LEVEL_LOW);
    memory.inputBits.setBit(IB_TANK * 8 + TANK_HIGH, level > LEVEL_HIGH);
    for (int i = 0; i < 8; ++i) {
        memory.outputBits.setBit(QB_LIGHTS * 8 + i, i == machine.light);
        memory.inputBits.setBit(IB_LIGHTS * 8 + i, i == machine.light);
        memory.inputBits.setBit(IB_FREE * 8 + i, memory.outputBits.testBit(QB_FREE * 8 + i));
    }
    memory.specialBits.setBit(SM_ALWAYS_ON);
    memory.specialBits.setBit(SM_BLINK, machine.uptimeMs / BLINK_MS % 2 == 0);
    memory.specialWords[SW_SECONDS] = static_cast<quint16>(machine.uptimeMs / 1000 & 0xFFFF);
}
} // namespace

void startMachine(const Machine& machine, Memory& memory, int station)
{
    setWord(memory, MW_SETPOINT, SETPOINT_AT_START);
    setWord(memory, MW_CONTROL, 1 << CONTROL_PUMP_ENABLE);
    memory.specialWords[SW_STATION] = static_cast<quint16>(station);
    showMachine(machine, memory, 0);
}

void runMachine(Machine& machine, Memory& memory, qint64 elapsedMs)
{
    machine.untakenMs += static_cast<int>(std::clamp<qint64>(elapsedMs, 0, MAX_CATCH_UP_MS));
    for (; machine.untakenMs >= STEP_MS; machine.untakenMs -= STEP_MS) {
        machine.uptimeMs += STEP_MS;
        clearCounters(machine, memory);
        switchPump(machine, memory);
        const int flow = moveLevel(machine);
        moveLight(machine, memory);
        showMachine(machine, memory, flow);
    }
}
} // namespace plc
