/// How a host write becomes write records: normalising the value and cutting it, without state.
#ifndef KP410_DATA_WRITE_PIECES_H
#define KP410_DATA_WRITE_PIECES_H

#include "talmor_kp410_port.h"

#include "data/image.h"

/// One write record's share of a host write, in the units of the write encoders and of
/// WriteDataToLocal.
struct WritePiece {
    int address;
    int length;
    QByteArray data;
};

/// The value in the runtime's format as elements alone, padded with zeros and cut to `count`
/// elements: a byte per bit or byte, 2 per word, 4 per double word (two of `count`). One that is so
/// already comes back as it is, shared: for a word that is a quarter of the cost of queueing it.
QByteArray normalisedValue(const RegisterTypeInfo& info, const QByteArray& value, int count);

/// Bytes of a normalised value of `total` bytes that one queued piece carries. `blockLimit` is in
/// bytes, rounded up to whole words or double words; below 1 it is no limit.
int bytesPerPiece(const RegisterTypeInfo& info, int blockLimit, int total);

/// The piece of `bytes` bytes from byte `position` of a normalised value on, of a variable at
/// element `address`. Not for OUTPUT_BIT.
WritePiece pieceAt(const RegisterTypeInfo& info, int address, const QByteArray& value, int position,
                   int bytes);

/// The `length` of a piece of so many bytes.
int pieceLength(const RegisterTypeInfo& info, qint64 bytes);

/// Where in its value a piece with the address `pieceAddress` stands; below 0 or beyond the value
/// when it is none of that value's. Not for OUTPUT_BIT.
qint64 piecePosition(const RegisterTypeInfo& info, int address, int pieceAddress);

/// The whole write of `count` output bits as one piece: bit 0 of each value byte, packed.
WritePiece outputBitPiece(int address, const QByteArray& value, int count);

#endif
