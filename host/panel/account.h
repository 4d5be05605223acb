// The books of the loop: what a reply and the driver's callbacks mean for tags, writes and
// counters.
#pragma once

#include "panel.h"

/// Takes what the callbacks recorded during the last call of the driver.
/// @param served the variable that the call finished, null when it came before any request
void takeDriverCallbacks(Panel* panel, const RW_VAR* served);

/// Hands the reply to the driver and notes what came of it.
/// @param answered it is a whole reply of the station, or none was wanted
void takeReply(Panel* panel, const Request& request, Exchanged* exchanged, bool answered);
