/// How a variable ends, whoever finds that it has: the communication cycle or the scheduler.
#ifndef KP410_DRIVER_FINISH_H
#define KP410_DRIVER_FINISH_H

#include "talmor_kp410_port.h"

enum Ending { SERVED, GIVEN_UP };

/// Makes sure that the end of a variable needs no memory, by parting its list from the copies that
/// the runtime may hold. Throws before anything has changed. Hold `listMutex`.
void prepareToFinish();

/// Finishes the head variable of the list that `currentSource` names. A write or one-shot read is
/// reported through FinishCallback (a one-shot read of another node is not) and leaves its list, a
/// cyclic read moves to the end of its list; `retVar` names it, its `result` is for the caller to
/// set. When it is given up, FailCallback follows and the entries with the same keys are removed
/// with it. Call `prepareToFinish` first. Hold `listMutex`. A callback may replace the settings
/// record in `PLC_driver`: `settings` is the one that the step began with.
/// @param remote the variable belongs to another node
void finishVariable(const ComInfo& settings, Ending ending, bool remote);

#endif
