// Frames of the line in words. Any bytes whatever give a text.
#pragma once

#include <QByteArray>
#include <QString>

/// @param remote the request is in the remote framing, else in the local one
QString describeRequest(const QByteArray& frame, bool remote);

/// @param reply all that came
/// @param request the reply is judged against it: station, function, length, repeated fields
/// @param remote framing of the request; replies look the same in both
QString describeReply(const QByteArray& reply, const QByteArray& request, bool remote);

/// That nothing came. @param request, remote as of describeReply
QString describeSilence(const QByteArray& request, bool remote);

/// Bytes thrown away; when they begin with a whole reply, a late one say, it is described.
QString describeStray(const QByteArray& bytes);
