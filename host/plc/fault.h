// What can go wrong on purpose: the kinds of faults, and one fault as it was asked for.
#ifndef PLC_FAULT_H
#define PLC_FAULT_H

#include <QList>

#include <array>

namespace plc
{
/// In the order in which the faults of one request take effect.
enum FaultKind {
    FAULT_DEAD,      ///< the station neither carries out nor answers anything from now on
    FAULT_IGNORE,    ///< neither carried out nor answered
    FAULT_EXCEPTION, ///< not carried out, answered by an exception
    FAULT_STALE,     ///< the reply to the request before on the same link
    FAULT_STATION,   ///< another station's number, the CRC good
    FAULT_CRC,       ///< both CRC bytes inverted
    FAULT_TRUNCATE,  ///< bytes missing at the end
    FAULT_EXTEND,    ///< random bytes at the end
    FAULT_DROP,      ///< carried out, not answered
    FAULT_BABBLE,    ///< noise instead of the reply, and the link hears nothing meanwhile
    FAULT_NOISE,     ///< random bytes before the reply
    FAULT_ECHO,      ///< the request itself comes back first
    FAULT_DELAY,     ///< the whole reply late; other requests are served meanwhile
    FAULT_SLOW,      ///< the reply drawn out, and the link hears nothing meanwhile
};

enum ParameterNeed { PARAMETER_NONE, PARAMETER_OPTIONAL, PARAMETER_REQUIRED };

struct FaultKindInfo {
    FaultKind kind;
    const char* name;
    ParameterNeed need = PARAMETER_NONE;
    int standard = 0; ///< the parameter where none is given
    int lowest = 0;
    int highest = 0;
    const char* what = ""; ///< the parameter, for messages
};

inline constexpr int UNTIL_THE_END = 0; ///< parameter of FAULT_DEAD and FAULT_BABBLE
inline constexpr int NEXT_STATION = 0;  ///< parameter of FAULT_STATION: the number after its own
inline constexpr int MIN_STATION = 1;
inline constexpr int MAX_STATION = 247;
inline constexpr int MAX_WAIT_MS = 3600 * 1000;
inline constexpr int MAX_FAULT_BYTES = 256; ///< the longest frame of the line

inline constexpr std::array FAULT_KINDS = {
    FaultKindInfo{FAULT_DEAD, "dead", PARAMETER_OPTIONAL, UNTIL_THE_END, 1, MAX_WAIT_MS,
                  "milliseconds"},
    FaultKindInfo{FAULT_IGNORE, "ignore"},
    FaultKindInfo{FAULT_EXCEPTION, "exception", PARAMETER_OPTIONAL, 4, 1, 255, "a code"},
    FaultKindInfo{FAULT_STALE, "stale"},
    FaultKindInfo{FAULT_STATION, "station", PARAMETER_OPTIONAL, NEXT_STATION, MIN_STATION,
                  MAX_STATION, "a station"},
    FaultKindInfo{FAULT_CRC, "crc"},
    FaultKindInfo{FAULT_TRUNCATE, "truncate", PARAMETER_OPTIONAL, 1, 1, MAX_FAULT_BYTES, "bytes"},
    FaultKindInfo{FAULT_EXTEND, "extend", PARAMETER_OPTIONAL, 1, 1, MAX_FAULT_BYTES, "bytes"},
    FaultKindInfo{FAULT_DROP, "drop"},
    FaultKindInfo{FAULT_BABBLE, "babble", PARAMETER_OPTIONAL, UNTIL_THE_END, 1, MAX_WAIT_MS,
                  "milliseconds"},
    FaultKindInfo{FAULT_NOISE, "noise", PARAMETER_OPTIONAL, 3, 1, MAX_FAULT_BYTES, "bytes"},
    FaultKindInfo{FAULT_ECHO, "echo"},
    FaultKindInfo{FAULT_DELAY, "delay", PARAMETER_REQUIRED, 0, 1, MAX_WAIT_MS, "milliseconds"},
    FaultKindInfo{FAULT_SLOW, "slow", PARAMETER_REQUIRED, 0, 1, MAX_WAIT_MS, "milliseconds"},
};

enum WhenKind {
    WHEN_PERCENT, ///< by chance
    WHEN_NUMBERS, ///< the requests of these numbers, the first is 1
    WHEN_FROM,    ///< from that number on
    WHEN_EVERY,   ///< every so many
};

inline constexpr int EVERY_STATION = 0;

struct Fault {
    FaultKind kind = FAULT_DROP;
    int parameter = 0;
    WhenKind when = WHEN_NUMBERS;
    double percent = 0;          ///< of WHEN_PERCENT: above 0, up to 100
    QList<qint64> numbers = {};  ///< of the others; one number unless WHEN_NUMBERS
    int station = EVERY_STATION; ///< the only one that the fault applies to
};
} // namespace plc

#endif
