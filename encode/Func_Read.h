/// Read requests of the local framing. The encoders run in the scheduler, which holds `listMutex`
/// and has checked that a settings record is there.
#ifndef KP410_ENCODE_FUNC_READ_H
#define KP410_ENCODE_FUNC_READ_H

#include "talmor_kp410_port.h"

/// Queues the one frame that reads `var`.
void ReadRegister(const RW_VAR* var);

/// Builds and queues the frame that reads `var`, a variable in native units, whole.
void ReadAnalog(const RW_VAR* var);

#endif
