/// Register-type tables and unit conversion, check values, and the check of replies.
#ifndef KP410_CHECK_FUNC_CHECK_H
#define KP410_CHECK_FUNC_CHECK_H

#include "talmor_kp410_port.h"

inline constexpr int BITS_PER_BYTE = 8;
inline constexpr int BYTES_PER_WORD = 2;
inline constexpr int BITS_PER_WORD = 16;
inline constexpr int CRC_BYTES = 2;        ///< the trailer of every frame of the local framing
inline constexpr int READ_DATA_OFFSET = 3; ///< in a read reply: after station, code, byte count

/// How one area is read. Native units are bytes (areas 3, 4, 12) or 16-bit words (8, 13).
struct AreaInfo {
    int area;             ///< AreaCode
    int readCode;         ///< FunctionCode of its read request
    int bytesPerUnit;     ///< bytes of one native unit, in the image and in a reply
    int wireUnitsPerUnit; ///< address and count units on the wire (bits, words) per native unit
};

inline constexpr AreaInfo AREAS[] = {
    {AREA_INPUT, FC_READ_INPUT_BITS, 1, 8},
    {AREA_OUTPUT, FC_READ_OUTPUT_BITS, 1, 8},
    {AREA_MEMORY, FC_READ_MEMORY_WORDS, 2, 1},
    {AREA_SPECIAL_BIT, FC_READ_SPECIAL_BITS, 1, 8},
    {AREA_SPECIAL_WORD, FC_READ_SPECIAL_WORDS, 2, 1},
};

/// The row of `type` in REGISTER_TYPES, or null for a type outside 0 to 13.
constexpr const RegisterTypeInfo* findRegisterType(int type)
{
    return static_cast<unsigned>(type) < REGISTER_TYPE_COUNT ? &REGISTER_TYPES[type] : nullptr;
}

/// The row of `area` in AREAS, or null for a code that names no area.
constexpr const AreaInfo* findArea(int area)
{
    for (const AreaInfo& row : AREAS) {
        if (row.area == area)
            return &row;
    }
    return nullptr;
}

/// Elements that `length` counts: the runtime counts a double-word variable in words, and half a
/// double word is a whole one.
constexpr qint64 elementsOf(const RegisterTypeInfo& info, qint64 length)
{
    return info.definition == DEF_DWORD ? (length + 1) / 2 : length;
}

/// @return area code of `type`; an unknown type itself
int getPlcReg(int type);

/// @return TypeDefinition of `type`; DEF_UNKNOWN for an unknown type
int getRegisterTypeDefinition(int type);

/// @return image offset per element address (bits for the bit types); 1 for an unknown type
int getPlcStorageAddress(int type);

/// Rewrites `regType`, `address` and `length` in place into the area's native type and units: the
/// units that hold the first element and all that the variable touches. Apply it once to a record.
/// An unknown type is left unchanged. @return always 0
int updateRwVar(RW_VAR* var);

enum ReplyCheck { REPLY_REFUSED = 0, REPLY_DATA = 1, REPLY_ACKNOWLEDGED = 2 };

/// Checks the CRC trailer of the first `length` bytes of `reply` and the `rwFlag` of the head
/// frame, which must exist. Lengths below 2 or beyond the reply are refused. Communication task
/// only.
/// @return ReplyCheck
int CheckGetData(const QByteArray* reply, int length);

/// The bytes of `array` as the unsigned values that they are on the wire.
inline const unsigned char* wireBytes(const QByteArray& array)
{
    return reinterpret_cast<const unsigned char*>(array.constData());
}

/// CalCRC over the first `count` bytes of `array`; a count of more than 16 bits wraps.
inline unsigned short crcOf(const QByteArray& array, int count)
{
    return CalCRC(wireBytes(array), static_cast<unsigned short>(count));
}

#endif
