// What the decoding of requests and replies has in common: the functions of the line, and remarks
// on a frame's length and CRC.
#pragma once

#include "talmor_kp410_port.h"

#include <QByteArray>
#include <QString>

enum class Shape { Read, WriteWord, WriteBit, WriteBlock };

/// One function of the local framing, to which the remote one comes down too.
struct LineFunction {
    int code; ///< FunctionCode
    int area; ///< AreaCode
    Shape shape;
    const char* elements;
    const char* prefix; ///< of an address
    int bitsPerElement;
    bool byteDotBit; ///< addresses are written byte.bit, as in tags
};

// clang-format off
inline constexpr LineFunction LINE_FUNCTIONS[] = {
    {FC_READ_OUTPUT_BITS,   AREA_OUTPUT,       Shape::Read,       "output bits",   "Q",  1,  true},
    {FC_READ_INPUT_BITS,    AREA_INPUT,        Shape::Read,       "input bits",    "I",  1,  true},
    {FC_READ_MEMORY_WORDS,  AREA_MEMORY,       Shape::Read,       "memory words",  "MW", 16, false},
    {FC_READ_SPECIAL_BITS,  AREA_SPECIAL_BIT,  Shape::Read,       "special bits",  "SM", 1,  false},
    {FC_READ_SPECIAL_WORDS, AREA_SPECIAL_WORD, Shape::Read,       "special words", "SW", 16, false},
    {FC_WRITE_MEMORY_WORD,  AREA_MEMORY,       Shape::WriteWord,  "memory word",   "MW", 16, false},
    {FC_WRITE_OUTPUT_BITS,  AREA_OUTPUT,       Shape::WriteBlock, "output bits",   "Q",  1,  true},
    {FC_WRITE_MEMORY_WORDS, AREA_MEMORY,       Shape::WriteBlock, "memory words",  "MW", 16, false},
    {FC_WRITE_SPECIAL_BIT,  AREA_SPECIAL_BIT,  Shape::WriteBit,   "special bit",   "SM", 1,  false},
};
// clang-format on

inline constexpr int EXCEPTION_FLAG = 0x80; ///< set in the function code of an exception reply
inline constexpr int BIT_ON = 0xFF00;       ///< flag and zero byte of a single bit that is set

/// What a request wants, as its reply must repeat it; the initial values fit any reply.
struct Wanted {
    int station = -1;
    int code = FC_NONE;
    int count = 0;    ///< elements
    int address = -1; ///< of a write
    int echo = -1;    ///< last field of the reply to a write: the count, or the value
};

struct DecodedRequest {
    QString text;
    Wanted wanted;
};

/// @return null for a code that the controller does not have
const LineFunction* findFunction(int code);

/// Bytes that `count` elements take in a frame.
int dataBytes(const LineFunction& function, int count);

/// The elements as a person names them: "MW100..109", "Q2.0..2.7", "MW5, count 0".
QString rangeText(const LineFunction& function, int address, int count);

/// "1 byte", "2 bytes"
QString counted(int count, const char* thing);

/// "0x2B"
QString hexByte(int byte);

/// "3 bytes missing", "1 byte left over"; empty when `size` is as expected.
QString lengthRemark(int size, int expected);

/// Of the first `length` bytes, or all when there are fewer; at least two.
bool crcGood(const QByteArray& frame, int length);
QString crcRemark(const QByteArray& frame, int length);
