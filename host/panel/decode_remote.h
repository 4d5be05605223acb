// Requests of the remote framing in words. Their replies are those of the local framing.
#pragma once

#include "decode_parts.h"

/// @param frame any bytes
DecodedRequest decodeRemoteRequest(const QByteArray& frame);
