/// Judging a reply against the head frame, which must exist. Communication task only; `listMutex`
/// must be free, since the reply to a read-modify-write takes it.
#ifndef KP410_DRIVER_DISPATCH_H
#define KP410_DRIVER_DISPATCH_H

#include "talmor_kp410_port.h"

/// Judges the reply to a variable of the own node and stores the data of a good read.
/// @param reply may be null when `length` is 0; only its first `length` bytes count
/// @return the result code; RESULT_GOOD for success
int DealDataOfLocalArea(QByteArray* reply, int length);

/// The same for a variable of another node, whose data is not stored. Only the read of a
/// read-modify-write is used. @return RESULT_GOOD or RESULT_GOOD_REMOTE for success
int DealDataOfRemoteArea(QByteArray* reply, int length);

/// @return the result code of an Outcome; RESULT_UNKNOWN for any other number
int GetDriverReturnValue(int outcome);

/// @return `errorBase` + 1 + the head frame's `hostKey` where that is 0 to 11, else `errorBase` + 1
int SwitchErrorReturn(int errorBase);

#endif
