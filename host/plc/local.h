// The local framing: Modbus RTU and three codes of the controller's own.
#ifndef PLC_LOCAL_H
#define PLC_LOCAL_H

#include "answer.h"

namespace plc
{
inline constexpr int LOCAL_STATION_OFFSET = 0;

/// The length of the checked request that `bytes` begins with; 0 when there is none (yet).
/// @param silent nothing more follows what is there
int localFrameLength(const QByteArray& bytes, bool silent);
/// @param frame a whole, checked request
Request parseLocal(const QByteArray& frame, const Memory& memory);
} // namespace plc

#endif
