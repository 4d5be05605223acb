/// Request bytes of both framings and the shape of their replies, without state.
#ifndef KP410_ENCODE_FRAME_H
#define KP410_ENCODE_FRAME_H

#include "talmor_kp410_port.h"

#include <array>

inline constexpr int SHORT_FRAME_BYTES = 8; ///< station, code, address, count or value; CRC
inline constexpr int WRITE_REPLY_BYTES = SHORT_FRAME_BYTES; ///< echoes as much of the request
typedef std::array<char, SHORT_FRAME_BYTES> ShortFrame;

/// The reply that a request expects.
struct ReplyShape {
    int length; ///< bytes in all; REPLY_NONE or REPLY_ANY
    int dataOffset;
    int dataLength;
};

inline constexpr ReplyShape WRITE_REPLY = {WRITE_REPLY_BYTES, 0, 0};
inline constexpr ReplyShape NO_REPLY = {REPLY_NONE, 0, 0};

/// The reply to a read of `length` units of `regType`: a byte per unit of the byte areas, two per
/// unit of the word areas, none for an unknown type or a negative length.
ReplyShape replyOfRead(int regType, int length);

// Fields take the low bits of what they are given; 16 and 32 bits travel high byte first.
void append8(QByteArray& frame, int value);
void append16(QByteArray& frame, int value);
void append32(QByteArray& frame, int value);

/// Appends the CRC-16 of the frame so far, low byte first.
void appendCrc(QByteArray& frame);

/// Station, function code and start address: the head of every local request.
QByteArray localHead(int station, int functionCode, int address);

/// A request of 8 bytes: a read with the count, or a write of one word with the value, in wire
/// units (bits or words).
ShortFrame shortRequest(int station, int functionCode, int address, int value);

/// The same with zeros in the place of value and CRC.
ShortFrame shortHead(int station, int functionCode, int address);

/// The local read of a variable in native units; an unknown type gives function code FC_NONE.
ShortFrame readRequestOf(const RW_VAR& var);

/// The description of `var` in the remote framing, with the value bytes `data`, the length in byte
/// 0 and the checksum at the end.
QByteArray remoteRequest(const RW_VAR& var, const QByteArray& data);

/// `words` words of `data`, swapped to high byte first; missing bytes are 0.
QByteArray wireWords(const QByteArray& data, int words);

#endif
