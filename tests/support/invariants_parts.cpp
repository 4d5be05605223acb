#include "support/bytes.h"
#include "support/invariants.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace
{
QString wrongField(const char* name, qint64 is, qint64 expected)
{
    return is == expected ? QString()
                          : QString::fromLatin1("frame: %1 is %2, not %3")
                                .arg(QLatin1String(name))
                                .arg(is)
                                .arg(expected);
}

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
    int area, read, write;
    bool inBits;
    int bytesPerUnit;
};

const AreaCodes* codesOf(int area)
{
    static const AreaCodes table[] = {{3, 0x02, -1, true, 1},
                                      {4, 0x01, 0x0F, true, 1},
                                      {8, 0x03, 0x10, false, 2},
                                      {12, 0x31, 0x35, true, 1},
                                      {13, 0x33, -1, false, 2}};
    for (const AreaCodes& row : table) {
        if (row.area == area)
            return &row;
    }
    return nullptr;
}

QString localFault(const Protocol& p, bool write, bool pair)
{
    const RW_VAR& var = p.var;
    const AreaCodes* codes = codesOf(areaOf(var.regType));
    const bool pairRead = pair && var.rmwStep == RMW_READ_STEP;
    int code = !codes ? 0 : write && !pairRead ? codes->write : codes->read;
    if (code == 0x10 && (pair || var.length == 1))
        code = 0x06;
    const bool bits = codes && codes->inBits && !write;
    const quint32 address = static_cast<quint32>(var.address) * (bits ? 8U : 1U);
    const quint32 count = pairRead ? 1U : static_cast<quint32>(var.length) * (bits ? 8U : 1U);
    QString wrong = wrongField("function code", at(p.frame, 1), code);
    if (wrong.isEmpty())
        wrong = wrongField("station", at(p.frame, 0), var.station & 0xFF);
    if (wrong.isEmpty())
        wrong = wrongField("address", at16(p.frame, 2), address & 0xFFFF);
    if (wrong.isEmpty() && code != 0x06 && code != 0x35)
        wrong = wrongField("count", at16(p.frame, 4), count & 0xFFFF);
    return wrong;
}
} // namespace

QString heldLock(Communication_Protocol& driver)
{
    const struct {
        const char* name;
        QMutex* mutex;
    } locks[] = {{"listMutex", &driver.listMutex},
                 {"storageMutex", &driver.storageMutex},
                 {"stationMutex", &driver.stationMutex}};
    for (const auto& lock : locks) {
        if (!lock.mutex->tryLock())
            return QString::fromLatin1("the lock %1 is held").arg(QLatin1String(lock.name));
        lock.mutex->unlock();
    }
    return QString();
}

QString frameFault(const Protocol& p, bool write, bool remoteFraming, bool waits)
{
    const QByteArray& frame = p.frame;
    const int type = p.var.regType;
    const bool pair = write && !remoteFraming && (type == MEMORY_BIT || type == MEMORY_BYTE);
    const bool pairRead = pair && p.var.rmwStep == RMW_READ_STEP;
    QString wrong = wrongField("length", p.frameLength, frame.size());
    if (wrong.isEmpty() && remoteFraming) {
        unsigned sum = 0; // as the CRC, over as many bytes as 16 bits can count
        for (int i = 0; i < ((frame.size() - 1) & 0xFFFF); ++i)
            sum += static_cast<unsigned char>(frame.at(i));
        const int values = write ? p.var.data.size() : 0;
        wrong = wrongField("checksum", at(frame, frame.size() - 1), sum & 0xFF);
        if (wrong.isEmpty())
            wrong = wrongField("length", frame.size(), 22 + values);
        if (wrong.isEmpty())
            wrong = wrongField("length byte", at(frame, 0), frame.size() & 0xFF);
    } else if (wrong.isEmpty()) {
        const QByteArray body = frame.left(frame.size() - 2);
        const bool open = waits && frame.endsWith(QByteArray(4, '\0'));
        // Of more than 65,535 bytes the CRC covers the low 16 bits of their number.
        const QByteArray covered = body.left(body.size() & 0xFFFF);
        if (!open && crcBytes(covered) != frame.right(2))
            return QString::fromLatin1("frame: wrong CRC");
        wrong = localFault(p, write, pair);
    }
    const AreaCodes* codes = codesOf(areaOf(type));
    const qint64 perUnit = codes ? codes->bytesPerUnit : 0;
    const qint64 most = std::numeric_limits<int>::max() - 5;
    const qint64 data = pairRead ? 2
                        : write  ? 0
                                 : std::min<qint64>(perUnit * std::max(p.var.length, 0), most);
    const bool answered = !(write && remoteFraming && p.var.station == 0);
    if (wrong.isEmpty())
        wrong = wrongField("replyDataLength", p.replyDataLength, data);
    if (wrong.isEmpty())
        wrong = wrongField("replyLength", p.replyLength,
                           write && !pairRead ? (answered ? 8 : 0) : data + 5);
    return wrong.isEmpty()
               ? wrongField("replyDataOffset", p.replyDataOffset, write && !pairRead ? 0 : 3)
               : wrong;
}

namespace
{
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
                return QString::fromLatin1("bit %1 has changed").arg(number);
        }
        ++i;
    }
    return QString();
}
} // namespace

QString storeFault(const Store& before, const Store& after, const Target& target)
{
    for (auto areas = before.cbegin(); areas != before.cend(); ++areas) {
        for (auto image = areas->cbegin(); image != areas->cend(); ++image) {
            if (after.value(areas.key()).value(image.key()).size() < image->size())
                return QString::fromLatin1("an image has shrunk");
        }
    }
    for (auto areas = after.cbegin(); areas != after.cend(); ++areas) {
        for (auto image = areas->cbegin(); image != areas->cend(); ++image) {
            const QByteArray old = before.value(areas.key()).value(image.key());
            if (image->size() > MAX_IMAGE_BYTES)
                return QString::fromLatin1("an image has outgrown its limit");
            if (image->constData() == old.constData())
                continue;
            const bool here =
                target.station == areas.key() && target.area == image.key() && !target.isNone();
            const QString wrong = firstChange(old, *image, here ? target : Target());
            if (!wrong.isEmpty())
                return QString::fromLatin1("area %1: ").arg(image.key()) + wrong;
        }
    }
    return QString();
}
