#include "check/Func_Check.h"
#include "data/Func_GetOrSetData.h"
#include "data/write_pieces.h"

#include <QMutexLocker>
#include <QSet>

namespace
{
void putPiece(RW_VAR& record, const WritePiece& piece)
{
    record.address = piece.address;
    record.length = piece.length;
    record.data = piece.data;
}

void storeOnly(RW_VAR& record, const RegisterTypeInfo& info, const QByteArray& value)
{
    const QByteArray normal = normalisedValue(info, value, record.length);
    if (record.regType == OUTPUT_BIT)
        putPiece(record, outputBitPiece(record.address, normal, record.length));
    else
        putPiece(record, pieceAt(info, record.address, normal, 0, normal.size()));
    WriteDataToLocal(&record);
}

int queuePiece(RW_VAR& record, const WritePiece& piece)
{
    putPiece(record, piece);
    const int pending = AddListWriteVar(&record, ADD_CHECKED);
    // While the line fails the encoder leaves the store alone, so the value is shown from here.
    if (PLC_driver.lastFailed)
        WriteDataToLocal(&record);
    return pending;
}

QSet<int> pendingAddresses(int station, int regType)
{
    QSet<int> addresses;
    QMutexLocker lock(&PLC_driver.listMutex);
    for (const RW_VAR& var : PLC_driver.writeList) {
        if (var.station == station && var.regType == regType)
            addresses.insert(var.address);
    }
    return addresses;
}

/// Queues what is left of a write when the list is full: only a piece that replaces a pending write
/// still has a place, so the others are not offered one by one.
/// @param pending entries in the list
/// @return entries in the list after the last piece that was offered
int queueReplacements(RW_VAR& record, const RegisterTypeInfo& info, int address,
                      const QByteArray& value, int from, int step, int pending)
{
    const QSet<int> targets = pendingAddresses(record.station, record.regType);
    for (int position = from; position < value.size(); position += step) {
        const WritePiece piece = pieceAt(info, address, value, position, step);
        if (targets.contains(piece.address))
            pending = queuePiece(record, piece);
    }
    if (PLC_driver.lastFailed) {
        putPiece(record, pieceAt(info, address, value, from, value.size() - from));
        WriteDataToLocal(&record);
    }
    return pending;
}

int queueWrite(RW_VAR& record, const RegisterTypeInfo& info, const QByteArray& value,
               int blockLimit)
{
    const int address = record.address;
    if (record.regType == OUTPUT_BIT)
        return queuePiece(record, outputBitPiece(address, value, record.length));
    const int step = bytesPerPiece(info, blockLimit, value.size());
    int pending = 0;
    int position = 0;
    for (; position < value.size() && pending < LIST_LIMIT; position += step)
        pending = queuePiece(record, pieceAt(info, address, value, position, step));
    if (position < value.size())
        pending = queueReplacements(record, info, address, value, position, step, pending);
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
    const RegisterTypeInfo* info = findRegisterType(type);
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

    if (settings->writeMode != WRITE_QUEUE) {
        if (info)
            storeOnly(record, *info, *value);
        return 1;
    }
    if (!info || !info->writable)
        return 0;
    *value = normalisedValue(*info, *value, count);
    return queueWrite(record, *info, *value, settings->maxBlockLength);
}
