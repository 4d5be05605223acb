#include "check/Func_Check.h"

namespace
{
bool endsInItsCrc(const QByteArray& reply, int length)
{
    const unsigned char* bytes = wireBytes(reply);
    const unsigned crc = crcOf(reply, length - CRC_BYTES);
    return bytes[length - 2] == (crc & 0xFF) && bytes[length - 1] == crc >> 8;
}
} // namespace

int CheckGetData(const QByteArray* reply, int length)
{
    if (length < CRC_BYTES || reply->size() < length || !endsInItsCrc(*reply, length))
        return REPLY_REFUSED;
    switch (PLC_driver.frameList.at(0).var.rwFlag) {
    case RW_READ:
        return REPLY_DATA;
    case RW_WRITE:
        return REPLY_ACKNOWLEDGED;
    default:
        return REPLY_REFUSED;
    }
}
