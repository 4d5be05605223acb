#include "encode/queue.h"

#include "check/guarded.h"

#include <cstring>

namespace
{
/// The last answered frame, whose memory is used again, or none. To give back and take memory for a
/// frame and its bytes would be a third of a turn that reads two words.
QList<Protocol> answeredFrames;

/// What a new frame is written into, at the end of `frameList`; it may have the fields of an old
/// one.
Protocol& newFrame()
{
    QList<Protocol>& frames = PLC_driver.frameList;
    if (frames.isEmpty() && !answeredFrames.isEmpty())
        frames.swap(answeredFrames);
    else
        frames.append(Protocol());
    return frames.last();
}

void setBytes(QByteArray& frame, const ShortFrame& bytes)
{
    if (frame.size() == SHORT_FRAME_BYTES)
        std::memcpy(frame.data(), bytes.data(), bytes.size());
    else
        frame = QByteArray(bytes.data(), SHORT_FRAME_BYTES);
}

void setBytes(QByteArray& frame, const QByteArray& bytes)
{
    frame = bytes;
}

template <typename Bytes>
void appendRequest(const Bytes& frame, const ReplyShape& reply, const RW_VAR& var)
{
    Appending<Protocol> appending(PLC_driver.frameList);
    Protocol& request = newFrame();
    setBytes(request.frame, frame);
    request.frameLength = request.frame.size();
    request.replyLength = reply.length;
    request.replyDataOffset = reply.dataOffset;
    request.replyDataLength = reply.dataLength;
    request.var = var;
    request.reserved1 = request.reserved2 = request.reserved3 = 0;
    appending.keep();
}
} // namespace

void queueFrame(const QByteArray& frame, const ReplyShape& reply, const RW_VAR& var)
{
    appendRequest(frame, reply, var);
}

void queueFrame(const ShortFrame& frame, const ReplyShape& reply, const RW_VAR& var)
{
    appendRequest(frame, reply, var);
}

void dropAnsweredFrame()
{
    QList<Protocol>& frames = PLC_driver.frameList;
    // Only memory that nobody else holds: what is written into it stays there.
    if (frames.size() == 1 && frames.isDetached() && answeredFrames.isEmpty())
        frames.swap(answeredFrames);
    else
        frames.removeFirst();
}
