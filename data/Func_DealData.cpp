#include "data/Func_DealData.h"

#include "check/Func_Check.h"
#include "check/arith.h"
#include "data/image.h"

#include <algorithm>

namespace
{
constexpr int REPLY_FRAME_BYTES = READ_DATA_OFFSET + CRC_BYTES;

int payloadBytes(const QByteArray& reply, int offset)
{
    if (offset < 0)
        return 0;
    return std::max(0, std::min(reply.size() - REPLY_FRAME_BYTES, reply.size() - offset));
}

void storePayload(const RW_VAR& var, const QByteArray& reply, int offset)
{
    const int definition = getRegisterTypeDefinition(var.regType);
    const bool words = definition == DEF_WORD;
    if (!words && definition != DEF_BYTE && definition != DEF_BIT)
        return;
    const int bytes = words ? payloadBytes(reply, offset) / 2 * 2 : payloadBytes(reply, offset);
    const ImageSpan span{qint64{getPlcStorageAddress(var.regType)} * var.address, bytes};
    if (bytes == 0 || !fitsImage(span))
        return;
    unsigned char* target = writableSpan(areaImage(var.station, var.regType), span);
    if (words)
        putSwappedWords(target, reply, offset, bytes / 2);
    else
        putBytes(target, reply, offset, bytes);
}
} // namespace

void SaveToLocalDataErea(QByteArray* reply)
{
    const Protocol& head = PLC_driver.frameList.at(0);
    if (head.var.rmwStep == RMW_READ_STEP)
        SpecialRegisterSave(head.var.regType, reply);
    else
        storePayload(head.var, *reply, head.replyDataOffset);
}

int mergedWord(int regType, int address, unsigned char value, int word)
{
    if (address < 0)
        return -1;
    if (regType == MEMORY_BIT) {
        const int mask = 1 << (address % BITS_PER_WORD);
        return value != 0 ? word | mask : word & ~mask;
    }
    if (regType == MEMORY_BYTE)
        return address % 2 == 0 ? (word & 0xFF00) | value : (value << 8) | (word & 0x00FF);
    return -1;
}

void SpecialRegisterSave(int regType, QByteArray* reply)
{
    if (reply->size() < REPLY_FRAME_BYTES || PLC_driver.frameList.size() < 2 ||
        PLC_driver.writeList.isEmpty())
        return;
    const RW_VAR& write = PLC_driver.writeList.at(0);
    const unsigned char value =
        write.data.isEmpty() ? 0 : static_cast<unsigned char>(write.data.at(0));
    const unsigned char* bytes = wireBytes(*reply);
    const int word = (bytes[READ_DATA_OFFSET] << 8) | bytes[READ_DATA_OFFSET + 1];
    const int merged = mergedWord(regType, write.address, value, word);
    if (merged < 0)
        return;
    constexpr int valueAt = 4;
    constexpr int crcAt = 6;
    QByteArray& frame = PLC_driver.frameList[1].frame;
    unsigned char* pending = writableSpan(frame, {0, crcAt + 2});
    pending[valueAt] = byteAt(merged, 8);
    pending[valueAt + 1] = byteAt(merged, 0);
    const int crc = CalCRC(pending, crcAt);
    pending[crcAt] = byteAt(crc, 0);
    pending[crcAt + 1] = byteAt(crc, 8);
}
