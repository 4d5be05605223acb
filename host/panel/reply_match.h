// Whether bytes that came are the answer to a request: the driver compares length and CRC alone.
#pragma once

#include <QByteArray>

/// A request as far as its answer can be told from another's.
struct Asked {
    QByteArray frame;
    int replyLength = 0; ///< ReplyLength or bytes
    bool remote = false; ///< framing; remote replies do not say what they answer
};

bool isWrite(const Asked& asked);

int stationAsked(const Asked& asked);

/// Whether nothing in an answer to one could show that it is not the answer to the other.
bool answersLookAlike(const Asked& a, const Asked& b);

/// Whether the CRC of `bytes` is good and they are long enough for a reply.
bool isWhole(const QByteArray& bytes);

/// A whole reply of the station asked, be it an exception: the station is there.
bool isFromStation(const Asked& asked, const QByteArray& reply);

/// A whole reply that cannot be the answer: another station's, another function's, that to a write
/// elsewhere or of something else, or one that contradicts itself. Never true for remote framing.
bool isForeign(const Asked& asked, const QByteArray& reply);

/// A whole exception reply to the request: shorter than what was expected, but all there is.
bool isException(const Asked& asked, const QByteArray& reply);

/// A read's request with its reply behind it, as an adapter that hears itself delivers them. The
/// acknowledgement of a write may look just like the echo.
bool isEchoed(const Asked& asked, const QByteArray& reply);
