#include "encode/Func_Write.h"

#include "check/Func_Check.h"
#include "check/guarded.h"
#include "data/Func_GetOrSetData.h"
#include "encode/queue.h"

#include <algorithm>

namespace
{
typedef void (*Encoder)(const RW_VAR* var);

constexpr bool isNarrow(const RegisterTypeInfo& info)
{
    return info.definition == DEF_BIT || info.definition == DEF_BYTE;
}

/// The first word of `data`; missing bytes are 0.
int wordOf(const QByteArray& data)
{
    const unsigned char* bytes = wireBytes(data);
    const int low = data.isEmpty() ? 0 : bytes[0];
    return data.size() < BYTES_PER_WORD ? low : bytes[1] << BITS_PER_BYTE | low;
}

Encoder encoderOf(int regType)
{
    const RegisterTypeInfo* info = findRegisterType(regType);
    if (!info || !info->writable)
        return nullptr;
    if (info->area == AREA_OUTPUT)
        return Write_Q;
    if (info->area == AREA_SPECIAL_BIT)
        return Write_SM;
    return isNarrow(*info) ? WriteBool_WordOfBit : WriteAnalog;
}
} // namespace

void WriteRegister(const RW_VAR* var)
{
    const Encoder encode = encoderOf(var->regType);
    if (!encode || (encode == WriteAnalog && var->length > MAX_ELEMENTS))
        return;
    encode(var);
    if (!PLC_driver.lastFailed)
        showWritten(*var);
}

void Write_Q(const RW_VAR* var)
{
    QByteArray frame = localHead(var->station, FC_WRITE_OUTPUT_BITS, var->address);
    append16(frame, var->length);
    append8(frame, var->data.size());
    frame.append(var->data);
    appendCrc(frame);
    queueFrame(frame, WRITE_REPLY, *var);
    beginRequest(1);
}

void Write_SM(const RW_VAR* var)
{
    constexpr int bitOn = 0xFF00;
    const bool on = !var->data.isEmpty() && var->data.at(0) != 0;
    QByteArray frame = localHead(var->station, FC_WRITE_SPECIAL_BIT, var->address);
    frame.append(var->data);
    append16(frame, on ? bitOn : 0);
    appendCrc(frame);
    queueFrame(frame, WRITE_REPLY, *var);
    beginRequest(1);
}

void WriteAnalog(const RW_VAR* var)
{
    if (var->regType != MEMORY_WORD && var->regType != MEMORY_DWORD)
        return;
    const bool single = var->length == 1;
    if (single && var->regType == MEMORY_WORD) {
        queueFrame(
            shortRequest(var->station, FC_WRITE_MEMORY_WORD, var->address, wordOf(var->data)),
            WRITE_REPLY, *var);
        beginRequest(1);
        return;
    }
    const int whole = std::max(var->length, 0);
    // Half a double word is not written. Its low word comes first, so swapping words is enough.
    const int words = var->regType == MEMORY_DWORD ? whole / 2 * 2 : whole;
    const QByteArray values = wireWords(var->data, words);
    QByteArray frame = localHead(
        var->station, single ? FC_WRITE_MEMORY_WORD : FC_WRITE_MEMORY_WORDS, var->address);
    if (!single) {
        append16(frame, var->length);
        append8(frame, values.size());
    }
    frame.append(values);
    appendCrc(frame);
    queueFrame(frame, WRITE_REPLY, *var);
    beginRequest(1);
}

void WriteBool_WordOfBit(const RW_VAR* var)
{
    if (var->station == 0 || var->address < 0)
        return;
    RW_VAR step = *var;
    if (var->regType == MEMORY_BIT)
        step.address = var->address / BITS_PER_WORD;
    else if (var->regType == MEMORY_BYTE)
        step.address = var->address / BYTES_PER_WORD;

    Appending<Protocol> pair(PLC_driver.frameList);
    step.rwFlag = RW_READ;
    step.rmwStep = RMW_READ_STEP;
    queueFrame(shortRequest(var->station, FC_READ_MEMORY_WORDS, step.address, 1),
               replyOfRead(MEMORY_WORD, 1), step);

    step.rwFlag = RW_WRITE;
    step.rmwStep = RMW_NONE;
    // The value and the CRC are known when the read has been answered.
    queueFrame(shortHead(var->station, FC_WRITE_MEMORY_WORD, step.address), WRITE_REPLY, step);
    pair.keep();
    beginRequest(2);
}
