// The remote framing: a length byte, a description of the variable, the value bytes of a write, an
// additive checksum.
#ifndef PLC_REMOTE_H
#define PLC_REMOTE_H

#include "answer.h"

namespace plc
{
/// As localFrameLength.
int remoteFrameLength(const QByteArray& bytes, bool silent);
/// The request of the local framing that does the same; it gets the same reply.
/// @param frame a whole, checked request
/// @param memory of the station addressed: a bit or byte of the memory area is merged into its word
Request parseRemote(const QByteArray& frame, const Memory& memory);
} // namespace plc

#endif
