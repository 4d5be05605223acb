#include "check/Func_Check.h"
#include "check/address.h"
#include "check/guarded.h"
#include "check/locks.h"
#include "check/records.h"
#include "data/Func_GetOrSetData.h"
#include "data/write_pieces.h"

#include <algorithm>

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

/// The pieces of a value whose writes are pending already: position in the value, index in
/// `writes`. Of several the first counts. Never the head: it is the one that may be on the wire.
QMap<int, int> pendingPieces(const QList<RW_VAR>& writes, const RW_VAR& record,
                             const RegisterTypeInfo& info, int total, int step)
{
    QMap<int, int> pending;
    for (int i = writes.size() - 1; i >= 1; --i) {
        const RW_VAR& var = writes.at(i);
        if (var.station != record.station || var.regType != record.regType)
            continue;
        const qint64 position = piecePosition(info, record.address, var.address);
        if (position >= 0 && position < total && position % step == 0 &&
            var.length == pieceLength(info, std::min<qint64>(step, total - position)))
            pending[static_cast<int>(position)] = i;
    }
    return pending;
}

/// Queues the pieces of a normalised value, all or, when memory fails, none: those that are pending
/// replace their writes, the others go to the end of a list that is not full.
/// @return entries in the list
int queuePieces(const RW_VAR& record, const RegisterTypeInfo& info, const QByteArray& value,
                int step)
{
    const auto pieceFrom = [&](int position) {
        RW_VAR piece = record;
        putPiece(piece, pieceAt(info, record.address, value, position, step));
        return piece;
    };
    Locker lock(&PLC_driver.listMutex);
    QList<RW_VAR>& writes = PLC_driver.writeList;
    const QMap<int, int> pending = pendingPieces(writes, record, info, value.size(), step);
    QList<RW_VAR> newer;
    for (auto at = pending.constBegin(); at != pending.constEnd(); ++at)
        newer.append(pieceFrom(at.key()));

    Appending<RW_VAR> appending(writes);
    for (int at = 0; at < value.size() && writes.size() < LIST_LIMIT; at += step) {
        if (!pending.contains(at))
            writes.append(pieceFrom(at));
    }
    writes.detach(); // nothing fails from here on
    for (const int index : pending)
        writes[index] = newer.takeFirst();
    appending.keep();
    return writes.size();
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

constexpr bool isMadeOfWords(const RegisterTypeInfo& info)
{
    return info.definition == DEF_WORD || info.definition == DEF_DWORD;
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
    const int address = guarded(-1, [=] { return StringAddressToInt(type, *addressText); });
    if (address < 0 || count > MAX_ELEMENTS || !isWithinReach(hostAccess(type, address, count)))
        return 0;
    const int target = settings->stationPerVar != 0 ? station : settings->defaultStation;
    const RegisterTypeInfo* info = findRegisterType(type);
    if (settings->writeMode != WRITE_QUEUE && info && isMadeOfWords(*info)) {
        return guarded(0, [=] {
            storeWords(target, *info, address, *value, count);
            return 1;
        });
    }

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
    record.station = target;
    record.length = count;

    return guarded(0, [&] { return writeValue(record, *settings, *value); });
}
