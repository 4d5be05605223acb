/// Where encoders put their frames.
#ifndef KP410_ENCODE_QUEUE_H
#define KP410_ENCODE_QUEUE_H

#include "encode/frame.h"

/// Appends a frame for `var` to `frameList`.
inline void queueFrame(const QByteArray& frame, const ReplyShape& reply, const RW_VAR& var)
{
    Protocol request;
    request.frame = frame;
    request.frameLength = frame.size();
    request.replyLength = reply.length;
    request.replyDataOffset = reply.dataOffset;
    request.replyDataLength = reply.dataLength;
    request.var = var;
    PLC_driver.frameList.append(request);
}

/// Tells the settings record that a request of `frames` frames begins, none of them answered yet.
inline void beginRequest(int frames)
{
    PLC_driver.comInfo->frameCount = frames;
    PLC_driver.comInfo->framesDone = 0;
}

#endif
