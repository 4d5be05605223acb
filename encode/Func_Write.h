/// Write requests of the local framing. The encoders run in the scheduler, which holds `listMutex`
/// and has checked that a settings record is there. Units as `AddListWriteVar` takes them.
#ifndef KP410_ENCODE_FUNC_WRITE_H
#define KP410_ENCODE_FUNC_WRITE_H

#include "talmor_kp410_port.h"

/// Queues the frames that write `var` and, unless the last reply failed, puts its value into the
/// store. Does nothing for a type that cannot be written or for more than MAX_ELEMENTS words. Takes
/// `storageMutex`.
void WriteRegister(const RW_VAR* var);

void Write_Q(const RW_VAR* var);  ///< bits of the output area, one frame
void Write_SM(const RW_VAR* var); ///< one special bit, one frame

/// Words or double words of the memory area, one frame; nothing for another type.
void WriteAnalog(const RW_VAR* var);

/// One bit or byte of the memory area: a read of its word, then a write of that word which
/// SpecialRegisterSave completes; both or, when memory fails, none. Nothing for station 0, which
/// would never answer the read, nor for a negative address, whose write could not be completed.
void WriteBool_WordOfBit(const RW_VAR* var);

#endif
