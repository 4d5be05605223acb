// What a station does with a request and what it replies. Both framings come down to this.
#ifndef PLC_ANSWER_H
#define PLC_ANSWER_H

#include "memory.h"

namespace plc
{
/// A request in the units of its function's area, bits or words.
struct Request {
    int function;       ///< FunctionCode, or a code that is none
    qint64 address = 0; ///< not negative; of a remote request up to 35 bits
    int count = 0;
    QByteArray data = {}; ///< of a write: bits packed, words high byte first
};

inline constexpr int EXCEPTION_FLAG = 0x80;
enum ExceptionCode { ILLEGAL_FUNCTION = 1, ILLEGAL_ADDRESS = 2, ILLEGAL_VALUE = 3 };

/// The reply of a station that refuses a request.
/// @param code an ExceptionCode or any other, 1 to 255
QByteArray exceptionReply(int station, int function, int code);
/// Carries the request out and returns the reply with its CRC. A request that gets an exception
/// changes nothing.
QByteArray answer(Memory& memory, int station, const Request& request);
} // namespace plc

#endif
