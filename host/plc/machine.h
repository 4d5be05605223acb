// The machine that lives in a station's memory: a tank that a pump fills and a consumer empties,
// counters, running lights. A panel reads it and steers it through these addresses.
#ifndef PLC_MACHINE_H
#define PLC_MACHINE_H

#include "memory.h"

namespace plc
{
// Written by the panel, read by the machine, unless marked (m), written by the machine. Units of
// the tank: 0 empty, 1000 full. A double word takes two words, the low one first; as a double word
// of the panel its number is half of its word address.
enum MemoryWordUse {
    MW_LEVEL = 100,       ///< (m) tank level
    MW_SETPOINT = 101,    ///< level that the pump keeps, +- HYSTERESIS
    MW_FLOW = 102,        ///< (m) signed: change of the level per second
    MW_CYCLES = 103,      ///< (m) counts every 100 ms, wraps at 65,536
    MD_UPTIME_MS = 104,   ///< (m) double word 52: milliseconds since the start
    MW_CONTROL = 106,     ///< control bits, see below
    MW_PUMP_STARTS = 107, ///< (m) how often the pump went on
    MD_PUMPED = 108       ///< (m) double word 54: what the pump has moved altogether
};
enum ControlBit {
    CONTROL_PUMP_ENABLE = 0,   ///< memory bit 212.0: 0 keeps the pump off and the tank runs empty
    CONTROL_LIGHTS_REVERSE = 1 ///< memory bit 212.1: 1 lets the lights run downwards
};
enum OutputByteUse {
    QB_LIGHTS = 0, ///< (m) running lights, one of eight
    QB_PUMP = 1,   ///< (m) bit 1.0: the pump runs
    QB_FREE = 2    ///< switched by the panel
};
enum InputByteUse {
    IB_LIGHTS = 0, ///< (m) mirrors QB_LIGHTS
    IB_TANK = 1,   ///< (m) TankInputBit
    IB_FREE = 2    ///< (m) mirrors QB_FREE
};
enum TankInputBit {
    TANK_PUMP = 0, ///< input bit 1.0: the pump runs
    TANK_LOW = 1,  ///< input bit 1.1: the level is below LEVEL_LOW
    TANK_HIGH = 2  ///< input bit 1.2: the level is above LEVEL_HIGH
};
enum SpecialBitUse {
    SM_ALWAYS_ON = 0,
    SM_BLINK = 1,          ///< (m) half a second on, half a second off
    SM_CLEAR_COUNTERS = 16 ///< set: clears MW_PUMP_STARTS and MD_PUMPED, then itself
};
enum SpecialWordUse {
    SW_SECONDS = 0, ///< (m) seconds since the start, wraps at 65,536
    SW_STATION = 1  ///< this station's number
};

inline constexpr int LEVEL_FULL = 1000;
inline constexpr int LEVEL_LOW = 100;
inline constexpr int LEVEL_HIGH = 900;
inline constexpr int LEVEL_AT_START = 200;
inline constexpr int SETPOINT_AT_START = 500;
inline constexpr int HYSTERESIS = 20;
inline constexpr int INFLOW_PER_S = 250;
inline constexpr int OUTFLOW_PER_S = 100;
inline constexpr int LIGHT_MS = 200;

/// What the machine keeps beside the memory.
struct Machine {
    int levelMilli = LEVEL_AT_START * 1000; ///< thousandths of a unit: a unit per second times 1 ms
    bool pump = false;
    int light = 0;
    int lightMs = 0;
    int pumpStarts = 0;
    qint64 pumpedMilli = 0;
    qint64 uptimeMs = 0;
    int untakenMs = 0; ///< time that has passed but does not fill a step
};

void startMachine(const Machine& machine, Memory& memory, int station);
/// Lets `elapsedMs` pass; of a longer pause only MAX_CATCH_UP_MS.
void runMachine(Machine& machine, Memory& memory, qint64 elapsedMs);
inline constexpr qint64 MAX_CATCH_UP_MS = 1000;
} // namespace plc

#endif
