#include "support/faults.h"
#include "support/invariants.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace
{
constexpr int ANSWERED_BYTES = 5; ///< of a read reply, beside its data

int at(const QByteArray& frame, int index)
{
    return index < frame.size() ? static_cast<unsigned char>(frame.at(index)) : -1;
}

int at16(const QByteArray& frame, int index)
{
    return at(frame, index) * 256 + at(frame, index + 1);
}

/// One row per area of the controller.
struct AreaCodes {
    int area, read, write, bytesPerUnit;
    unsigned readBits; ///< that a unit is counted as in a read
};

AreaCodes codesOf(int area)
{
    static const AreaCodes table[] = {{3, 0x02, -1, 1, 8},
                                      {4, 0x01, 0x0F, 1, 8},
                                      {8, 0x03, 0x10, 2, 1},
                                      {12, 0x31, 0x35, 1, 8},
                                      {13, 0x33, -1, 2, 1}};
    for (const AreaCodes& row : table) {
        if (row.area == area)
            return row;
    }
    return {area, 0, 0, 0, 1};
}

/// Of a long frame a check value covers as many bytes as 16 bits can count.
QByteArray covered(const QByteArray& frame, int trailer)
{
    return frame.left((frame.size() - trailer) & 0xFFFF);
}

QString remoteFault(const Protocol& p, bool write)
{
    unsigned sum = 0;
    for (const char byte : covered(p.frame, 1))
        sum += static_cast<unsigned char>(byte);
    const int size = p.frame.size();
    return firstWrong({{"checksum", at(p.frame, size - 1), sum & 0xFF},
                       {"size", size, 22 + (write ? p.var.data.size() : 0)},
                       {"length byte", at(p.frame, 0), size & 0xFF}});
}

QString localFault(const Protocol& p, bool write, bool pair, bool waits)
{
    const RW_VAR& var = p.var;
    const AreaCodes codes = codesOf(areaOf(var.regType));
    const bool pairRead = pair && var.rmwStep == RMW_READ_STEP;
    const bool single = write && !pairRead && codes.write == 0x10 && (pair || var.length == 1);
    const int code = single ? 0x06 : write && !pairRead ? codes.write : codes.read;
    const unsigned scale = write ? 1 : codes.readBits;
    const int count = at16(p.frame, 4);
    const bool counts = code != 0x06 && code != 0x35;
    const bool open = waits && p.frame.endsWith(QByteArray(4, '\0'));
    return firstWrong(
        {{"CRC", open || crcBytes(covered(p.frame, 2)) == p.frame.right(2), true},
         {"function code", at(p.frame, 1), code},
         {"station", at(p.frame, 0), var.station & 0xFF},
         {"address", at16(p.frame, 2), static_cast<quint32>(var.address) * scale & 0xFFFF},
         {"count", count,
          !counts    ? count
          : pairRead ? 1
                     : static_cast<quint32>(var.length) * scale & 0xFFFF}});
}

/// The first bit outside `target` that `now` does not have as `old`, behind whose end all is 0.
QString firstChange(const QByteArray& old, const QByteArray& now, const Target& target)
{
    static const char zeros[64] = {};
    constexpr int stride = sizeof zeros;
    const char *was = old.constData(), *is = now.constData();
    const int size = now.size(), kept = old.size();
    for (int i = 0; i < size;) {
        const bool known = i + stride <= kept;
        if (i + stride <= size && (known || i >= kept) &&
            std::memcmp(is + i, known ? was + i : zeros, stride) == 0) {
            i += stride;
            continue;
        }
        const int bits = (is[i] ^ (i < kept ? was[i] : 0)) & 0xFF;
        for (int bit = 0; bits != 0 && bit < 8; ++bit) {
            const qint64 number = qint64{8} * i + bit;
            const bool inside = number >= target.first && number < target.first + target.bits;
            if ((bits >> bit & 1) != 0 && !inside)
                return text("bit %1 has changed", number);
        }
        ++i;
    }
    return QString();
}
} // namespace

QString frameFault(const Protocol& p, bool write, bool remoteFraming, bool waits)
{
    const int type = p.var.regType;
    const bool pair = write && !remoteFraming && (type == MEMORY_BIT || type == MEMORY_BYTE);
    const bool read = !write || (pair && p.var.rmwStep == RMW_READ_STEP);
    const qint64 most = std::numeric_limits<int>::max() - ANSWERED_BYTES;
    const qint64 bytes = qint64{codesOf(areaOf(type)).bytesPerUnit} * std::max(p.var.length, 0);
    const qint64 data = !read ? 0 : pair ? 2 : std::min(bytes, most);
    const qint64 reply = read ? data + ANSWERED_BYTES : remoteFraming && p.var.station == 0 ? 0 : 8;
    const QString wrong =
        firstOf({remoteFraming ? remoteFault(p, write) : localFault(p, write, pair, waits),
                 firstWrong({{"frameLength", p.frameLength, p.frame.size()},
                             {"replyDataLength", p.replyDataLength, data},
                             {"replyLength", p.replyLength, reply},
                             {"replyDataOffset", p.replyDataOffset, read ? 3 : 0}})});
    return wrong.isEmpty() ? wrong : text("frame: ") + wrong;
}

QString storeFault(const Store& before, const Store& after, const Target& target)
{
    for (auto areas = before.constBegin(); areas != before.constEnd(); ++areas) {
        for (auto image = areas->constBegin(); image != areas->constEnd(); ++image) {
            if (after.value(areas.key()).value(image.key()).size() < image->size())
                return text("an image has shrunk");
        }
    }
    for (auto areas = after.constBegin(); areas != after.constEnd(); ++areas) {
        for (auto image = areas->constBegin(); image != areas->constEnd(); ++image) {
            const QByteArray old = before.value(areas.key()).value(image.key());
            const bool here = target.station == areas.key() && target.area == image.key();
            const bool same = image->constData() == old.constData();
            const QString wrong =
                image->size() > MAX_IMAGE_BYTES ? text("an image has outgrown its limit")
                : same                          ? QString()
                       : firstChange(old, *image, here && !target.isNone() ? target : Target());
            if (!wrong.isEmpty())
                return text("area %1: ", image.key()) + wrong;
        }
    }
    return QString();
}
