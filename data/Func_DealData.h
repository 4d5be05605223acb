/// What an accepted reply does: stored into the area images, or merged into a waiting write.
#ifndef KP410_DATA_FUNC_DEALDATA_H
#define KP410_DATA_FUNC_DEALDATA_H

#include "talmor_kp410_port.h"

/// Takes an accepted read reply to the head frame, complete from station byte to CRC. Stores its
/// data at the place that the request named, or, for the read frame of a read-modify-write, calls
/// SpecialRegisterSave and stores nothing. A reply shorter than 5 bytes stores nothing, nor does
/// one that would end beyond MAX_IMAGE_BYTES. Hold `storageMutex`, and for a read-modify-write
/// `listMutex`, taken first.
void SaveToLocalDataErea(QByteArray* reply);

/// Completes a read-modify-write: merges the write at the head of `writeList` into the word of
/// `reply` and puts the result and the CRC into the write frame that waits behind the head frame.
/// Changes nothing for a type other than MEMORY_BIT and MEMORY_BYTE. Hold `listMutex`.
void SpecialRegisterSave(int regType, QByteArray* reply);

/// `word` with the bit (MEMORY_BIT) or byte (MEMORY_BYTE) at `address` replaced by `value`; -1 for
/// another type or a negative address.
int mergedWord(int regType, int address, unsigned char value, int word);

#endif
