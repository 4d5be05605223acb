#include "check/Func_Check.h"
#include "check/guarded.h"
#include "check/locks.h"
#include "check/records.h"
#include "data/Func_GetOrSetData.h"
#include "data/write_pieces.h"

#include <QSet>

namespace
{
void putPiece(RW_VAR& record, const WritePiece& piece)
{
    record.address = piece.address;
    record.length = piece.length;
    record.data = piece.data;
}

/// Puts a normalised value into the record as one piece.
void putWhole(RW_VAR& record, const RegisterTypeInfo& info, int address, int count,
              const QByteArray& value)
{
    if (record.regType == OUTPUT_BIT)
        putPiece(record, outputBitPiece(address, value, count));
    else
        putPiece(record, pieceAt(info, address, value, 0, value.size()));
}

QSet<int> addressesOf(const QList<RW_VAR>& writes, int station, int regType)
{
    QSet<int> addresses;
    for (const RW_VAR& var : writes) {
        if (var.station == station && var.regType == regType)
            addresses.insert(var.address);
    }
    return addresses;
}

/// Puts the pieces of a normalised value into `writes`.
void putPieces(QList<RW_VAR>& writes, RW_VAR& record, const RegisterTypeInfo& info,
               const QByteArray& value, int step)
{
    const int address = record.address;
    int position = 0;
    for (; position < value.size() && writes.size() < LIST_LIMIT; position += step) {
        putPiece(record, pieceAt(info, address, value, position, step));
        putWrite(writes, record);
    }
    if (position >= value.size())
        return;
    // Only a piece that replaces a pending write still has a place in a full list.
    const QSet<int> targets = addressesOf(writes, record.station, record.regType);
    for (; !targets.isEmpty() && position < value.size(); position += step) {
        if (!targets.contains(pieceAddress(info, address, position)))
            continue;
        putPiece(record, pieceAt(info, address, value, position, step));
        putWrite(writes, record);
    }
}

/// Queues the pieces of a normalised value, all or, when memory fails, none.
/// @return entries in the list
int queuePieces(RW_VAR& record, const RegisterTypeInfo& info, const QByteArray& value, int step)
{
    QList<RW_VAR> next;
    Locker lock(&PLC_driver.listMutex);
    next = PLC_driver.writeList;
    putPieces(next, record, info, value, step);
    PLC_driver.writeList.swap(next);
    return PLC_driver.writeList.size();
}

/// @return entries in the list of writes; 0 for a value that leaves nothing to write
int queueWrite(RW_VAR& record, const RegisterTypeInfo& info, const QByteArray& value,
               int blockLimit)
{
    const int address = record.address;
    const int count = record.length;
    if (value.isEmpty() && record.regType != OUTPUT_BIT)
        return 0;
    const int step = bytesPerPiece(info, blockLimit, value.size());
    int pending = 0;
    if (record.regType == OUTPUT_BIT || step >= value.size()) {
        putWhole(record, info, address, count, value);
        pending = AddListWriteVar(&record, ADD_CHECKED);
    } else {
        pending = queuePieces(record, info, value, step);
    }
    // While the line fails the encoder leaves the store alone, so the value is shown from here.
    if (pending > 0 && PLC_driver.lastFailed) {
        guarded([&] {
            putWhole(record, info, address, count, value);
            WriteDataToLocal(&record);
        });
    }
    return pending;
}

int writeValue(RW_VAR& record, const ComInfo& settings, QByteArray& value)
{
    const RegisterTypeInfo* info = findRegisterType(record.regType);
    const bool queued = settings.writeMode == WRITE_QUEUE;
    if (!info)
        return queued ? 0 : 1;
    if (queued && !info->writable)
        return 0;
    const QByteArray normal = normalisedValue(*info, value, record.length);
    if (!queued) {
        putWhole(record, *info, record.address, record.length, normal);
        WriteDataToLocal(&record);
        return 1;
    }
    const int pending = queueWrite(record, *info, normal, settings.maxBlockLength);
    if (pending > 0 ||
        normal.isEmpty()) // else memory failed: the same value may be handed in again
        value = normal;
    return pending;
}
} // namespace

int SetRegisterData(QString* label, int type, QString* addressText, int station, QByteArray* value,
                    int count, int hostKey, int hostSubKey)
{
    const ComInfo* settings = PLC_driver.comInfo;
    if (!label || !addressText || !value || !settings)
        return 0;
    const int address = PLCAddressChangeIntef(type, *addressText);
    if (address < 0 || count > MAX_ELEMENTS || !isWithinReach(hostAccess(type, address, count)))
        return 0;

    RW_VAR record;
    record.hostKey = hostKey;
    record.hostSubKey = hostSubKey;
    record.rwFlag = RW_WRITE;
    record.remoteMode = settings->remoteFraming;
    record.nodeId = settings->ownNode;
    record.label = *label;
    record.addressText = *addressText;
    record.regType = type;
    record.address = address;
    record.station = settings->stationPerVar != 0 ? station : settings->defaultStation;
    record.length = count;

    return guarded(0, [&] { return writeValue(record, *settings, *value); });
}
