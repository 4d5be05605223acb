// Requests of the local framing in words.
#pragma once

#include "decode_parts.h"

/// @param frame any bytes
DecodedRequest decodeLocalRequest(const QByteArray& frame);
