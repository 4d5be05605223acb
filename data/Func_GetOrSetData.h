/// The runtime's reads and writes of controller data. GetRegisterData and SetRegisterData are
/// declared in the installed header.
#ifndef KP410_DATA_FUNC_GETORSETDATA_H
#define KP410_DATA_FUNC_GETORSETDATA_H

#include "talmor_kp410_port.h"

/// Puts the value of a write record into the area image of its station, so that host reads show it.
/// Units: output types a bit address, a bit count and packed bits; other bit types a bit address
/// and one byte per bit; bytes as they are; words and double words a word address and a word count,
/// little-endian. Missing `data` bytes are 0. Nothing is stored for a length below 1, an unknown
/// type, a negative address or an end beyond MAX_IMAGE_BYTES, nor when memory fails, which throws.
/// Takes `storageMutex`.
void WriteDataToLocal(const RW_VAR* var);

/// Puts `count` elements of a word or double-word type, as the runtime hands them over, into the
/// area image at element `address`; missing bytes are 0. For accesses within reach. Without a
/// record for WriteDataToLocal it takes a third of the time. Takes `storageMutex`; throws as above.
void storeWords(int station, const RegisterTypeInfo& info, int address, const QByteArray& value,
                int count);

/// The same as WriteDataToLocal for a write that is on its way to the controller, which no want of
/// memory may hold up: the store then learns the value from the next read.
void showWritten(const RW_VAR& var);

#endif
