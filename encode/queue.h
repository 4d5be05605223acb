/// Where encoders put their frames. Communication task only; hold `listMutex`.
#ifndef KP410_ENCODE_QUEUE_H
#define KP410_ENCODE_QUEUE_H

#include "encode/frame.h"

/// Appends a frame for `var` to `frameList`.
void queueFrame(const QByteArray& frame, const ReplyShape& reply, const RW_VAR& var);
void queueFrame(const ShortFrame& frame, const ReplyShape& reply, const RW_VAR& var);

/// Takes the head off `frameList`, which must have one.
void dropAnsweredFrame();

/// Tells the settings record that a request of `frames` frames begins, none of them answered yet.
inline void beginRequest(int frames)
{
    PLC_driver.comInfo->frameCount = frames;
    PLC_driver.comInfo->framesDone = 0;
}

#endif
