/// What a record names: its keys, its place, and the bits of an area image that it may change.
#ifndef KP410_TESTS_TARGET_H
#define KP410_TESTS_TARGET_H

#include "talmor_kp410_port.h"

typedef QMap<int, QMap<int, QByteArray>> Store;

/// `bits` bits from bit `first` on; none for less than 1, a negative start or an end too far.
struct Target {
    int station = 0;
    int area = 0;
    qint64 first = 0;
    qint64 bits = 0;

    bool isNone() const { return bits < 1 || first < 0 || end() > MAX_IMAGE_BYTES; }
    qint64 end() const { return (first + bits + 7) / 8; } ///< bytes that the image must have
};

/// Bits of one element of a register type.
inline int widthOf(int type)
{
    static const int widths[] = {1, 1, 1, 8, 8, 8, 16, 16, 16, 32, 32, 32, 1, 16};
    return type < 0 || type > 13 ? 0 : widths[type];
}

inline int areaOf(int type)
{
    static const int areas[] = {3, 4, 8, 3, 4, 8, 3, 4, 8, 3, 4, 8, 12, 13};
    return type < 0 || type > 13 ? type : areas[type];
}

inline qint64 elementsIn(int type, qint64 count)
{
    return widthOf(type) == 32 ? (count + 1) / 2 : count;
}

inline bool sameKeys(const RW_VAR& a, const RW_VAR& b)
{
    return a.hostKey == b.hostKey && a.hostSubKey == b.hostSubKey;
}

inline bool samePlace(const RW_VAR& a, const RW_VAR& b)
{
    return a.station == b.station && a.regType == b.regType && a.address == b.address &&
           a.length == b.length;
}

/// Of a host access: `count` elements from element `address` on.
inline Target hostTarget(int type, int address, int station, int count)
{
    const qint64 width = widthOf(type);
    return {station, areaOf(type), width * address,
            count < 1 ? 0 : width * elementsIn(type, count)};
}

/// Of a write record: the output area in bits, double words by word address.
inline Target writeTarget(const RW_VAR& record)
{
    const int type = record.regType;
    if (record.length < 1 || widthOf(type) == 0)
        return Target();
    if (areaOf(type) == AREA_OUTPUT)
        return {record.station, AREA_OUTPUT, record.address, record.length};
    const int unit = widthOf(type) == 32 ? 16 : widthOf(type);
    return {record.station, areaOf(type), qint64{unit} * record.address,
            widthOf(type) * elementsIn(type, record.length)};
}

/// Of `bytes` data bytes that answer a read; the area is the record's type, whatever it is.
inline Target readTarget(const RW_VAR& var, qint64 bytes)
{
    const int width = widthOf(var.regType);
    if (width == 0 || width == 32)
        return Target();
    const qint64 whole = width == 16 ? bytes / 2 * 2 : bytes;
    return {var.station, var.regType, qint64{width == 16 ? 16 : 8} * var.address, 8 * whole};
}

#endif
