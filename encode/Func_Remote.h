/// Requests of the remote framing. The encoders run in the scheduler, which holds `listMutex` and
/// has checked that a settings record is there. Every type is sent as the variable describes it.
#ifndef KP410_ENCODE_FUNC_REMOTE_H
#define KP410_ENCODE_FUNC_REMOTE_H

#include "talmor_kp410_port.h"

/// Queues the one frame that reads `var`.
void Remote_ReadVar(const RW_VAR* var);

/// Queues the one frame that writes `var` and puts its value into the store. Station 0 sends no
/// reply. Takes `storageMutex`.
void Remote_WriteVar(const RW_VAR* var);

#endif
