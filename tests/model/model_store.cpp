#include "model/model.h"
#include "support/faults.h"

#include <algorithm>
#include <limits>

namespace
{
/// One byte per bit.
QByteArray bitsOf(const QByteArray& data, qint64 count)
{
    QByteArray bits(static_cast<int>(count), '\0');
    for (int i = 0; i < bits.size() && i / 8 < data.size(); ++i)
        bits[i] = static_cast<char>((data.at(i / 8) >> (i % 8)) & 1);
    return bits;
}

/// A value of the runtime as its elements alone.
QByteArray normalised(int type, const QByteArray& value, int count)
{
    const int slot = widthOf(type) == 8 ? 2 : 1; // a byte comes in the space of two
    const qint64 bytes = std::max(widthOf(type) / 8, 1) * elementsIn(type, std::max(count, 0));
    QByteArray normal(static_cast<int>(bytes), '\0');
    for (int i = 0; i < normal.size() && i * slot < value.size(); ++i)
        normal[i] = value.at(i * slot);
    return normal;
}

bool isBeyond(int type, int address, int count)
{
    const qint64 offset = qint64{std::max(widthOf(type) / 8, 1)} * address;
    const qint64 end = offset + qint64{4} * count;
    return address < 0 || offset > MAX_IMAGE_BYTES || end > MAX_IMAGE_BYTES ||
           end < std::numeric_limits<int>::min();
}

bool isBits(int type)
{
    return widthOf(type) == 1;
}

bool sameRecord(const RW_VAR& a, const RW_VAR& b)
{
    return sameKeys(a, b) && samePlace(a, b) && a.rwFlag == b.rwFlag &&
           a.remoteMode == b.remoteMode && a.nodeId == b.nodeId && a.result == b.result &&
           a.rmwStep == b.rmwStep && a.auxParam == b.auxParam && a.label == b.label &&
           a.addressText == b.addressText && a.data == b.data;
}

bool sameRecords(const QList<RW_VAR>& a, const QList<RW_VAR>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameRecord);
}
} // namespace

/// At least `size` bytes of it, which are 0 at first.
QByteArray& Model::image(int station, int area, qint64 size)
{
    QByteArray& bytes = images[station][area];
    if (bytes.size() < size)
        bytes.append(QByteArray(static_cast<int>(size) - bytes.size(), '\0'));
    return bytes;
}

void Model::put(const Target& target, const QByteArray& bits)
{
    if (target.isNone())
        return;
    char* out = image(target.station, target.area, target.end()).data();
    const char* in = bits.constData();
    for (qint64 i = 0, bit = target.first; i < target.bits; ++i, ++bit) {
        const int mask = 1 << (bit % 8);
        out[bit / 8] = static_cast<char>(in[i] != 0 ? out[bit / 8] | mask : out[bit / 8] & ~mask);
    }
}

void Model::store(const RW_VAR& record)
{
    const Target target = writeTarget(record);
    if (target.isNone())
        return;
    QByteArray bits = record.data;
    if (!isBits(record.regType) || record.regType == OUTPUT_BIT)
        bits = bitsOf(record.data, target.bits);
    else
        bits.append(QByteArray(static_cast<int>(target.bits), '\0'));
    put(target, bits);
}

int Model::get(RW_VAR& var)
{
    const int type = var.regType, count = var.length, address = modelAddress(type, var.addressText);
    QByteArray& out = var.data;
    out.clear();
    if (isBeyond(type, address, count)) {
        if (count > 0 && count <= MAX_IMAGE_BYTES / 2)
            out = QByteArray(2 * count, '\0');
        return 0;
    }
    const int offset = std::max(widthOf(type) / 8, 1) * address;
    const QByteArray& bytes = image(var.station, areaOf(type), offset + 4 * count);
    const Target target = hostTarget(type, address, var.station, count);
    for (int i = 0; isBits(type) && i < target.bits; ++i)
        out.append(static_cast<char>((bytes.at((address + i) / 8) >> ((address + i) % 8)) & 1));
    if (!isBits(type))
        out = bytes.mid(offset, static_cast<int>(target.bits) / 8);
    if (widthOf(type) == 8)
        out.append(QByteArray(out.size(), '\0'));
    return 1;
}

/// Cuts a normalised value into write records. @return entries in the list, 0 without a piece
int Model::queue(RW_VAR& record, const QByteArray& value)
{
    const int type = record.regType, address = record.address, count = record.length;
    const auto add = [&] {
        const int pending = addWrite(record, ADD_CHECKED);
        if (failed)
            store(record);
        return pending;
    };
    if (type == OUTPUT_BIT) {
        record.data = QByteArray((value.size() + 7) / 8, '\0');
        for (int i = 0; i < count; ++i)
            record.data[i / 8] =
                static_cast<char>(record.data.at(i / 8) | (value.at(i) & 1) << (i % 8));
        return add();
    }
    const bool single = type == MEMORY_BIT || type == MEMORY_BYTE || type == SPECIAL_BIT;
    const bool output = areaOf(type) == AREA_OUTPUT;
    const qint64 multiple = output ? 1 : widthOf(type) / 8;
    const qint64 limit = settings.maxBlockLength;
    const qint64 step = single      ? 1
                        : limit < 1 ? value.size()
                                    : (limit + multiple - 1) / multiple * multiple;
    int pending = 0;
    for (qint64 at = 0; at < value.size(); at += step) {
        const int from = static_cast<int>(at);
        record.data = value.mid(from, static_cast<int>(std::min<qint64>(step, value.size() - at)));
        const int bytes = record.data.size();
        record.address = single   ? address + from
                         : output ? widthOf(type) * address + 8 * from
                                  : widthOf(type) / 16 * address + from / 2;
        record.length = single ? 1 : output ? 8 * bytes : bytes / 2;
        pending = add();
    }
    return pending;
}

int Model::set(RW_VAR& var)
{
    const int type = var.regType, count = var.length, address = modelAddress(type, var.addressText);
    if (!attached || count > MAX_ELEMENTS || isBeyond(type, address, count))
        return 0;
    RW_VAR written = record(type, var.addressText, var.station, count);
    written.hostKey = var.hostKey;
    written.hostSubKey = var.hostSubKey;
    written.rwFlag = RW_WRITE;
    written.label = var.label;
    if (settings.writeMode != WRITE_QUEUE) {
        const Target target = hostTarget(type, address, written.station, count);
        QByteArray bits = normalised(type, var.data, count);
        if (!isBits(type))
            bits = bitsOf(bits, target.bits);
        for (int i = 0; type == OUTPUT_BIT && i < bits.size(); ++i)
            bits[i] = static_cast<char>(bits.at(i) & 1);
        put(target, bits);
        return 1;
    }
    if (type < OUTPUT_BIT || type > SPECIAL_BIT || areaOf(type) == AREA_INPUT)
        return 0;
    var.data = normalised(type, var.data, count);
    return queue(written, var.data);
}

QString Model::difference(const Communication_Protocol& driver, const Store& store,
                          const ComInfo& actual)
{
    const QString wrong = firstWrong(
        {{"retryCount", actual.retryCount, settings.retryCount},
         {"frameCount", actual.frameCount, settings.frameCount},
         {"framesDone", actual.framesDone, settings.framesDone},
         {"scanDone", actual.scanDone, settings.scanDone},
         {"scanCount", driver.scanCount, scanCount},
         {"currentSource", driver.currentSource, source},
         {"writeBurst", driver.writeBurst, writeBurst},
         {"onceReadBurst", driver.onceReadBurst, onceBurst},
         {"lastFailed", driver.lastFailed, failed},
         {"frames", driver.frameList.size(), frames.size()},
         {"stations off", driver.stationMap.size(), off.size()},
         {"readList as the model's", sameRecords(driver.readList, reads), true},
         {"writeList as the model's", sameRecords(driver.writeList, writes), true},
         {"onceReadList as the model's", sameRecords(driver.onceReadList, onceReads), true},
         {"retVar as the model's", sameRecord(driver.retVar, served), true}});
    if (!wrong.isEmpty())
        return wrong;
    for (int i = 0; i < frames.size(); ++i) {
        const Protocol& is = driver.frameList.at(i);
        const ModelFrame& expected = frames.at(i);
        const int word = (is.frame.at(4) & 0xFF) * 256 + (is.frame.at(5) & 0xFF);
        if (!sameRecord(is.var, expected.var) || is.replyLength != expected.replyLength ||
            (expected.word >= 0 && word != expected.word))
            return text("frame %1 differs", i);
    }
    if (store.keys() != images.keys())
        return text("the stations of the store differ");
    for (auto areas = store.constBegin(); areas != store.constEnd(); ++areas) {
        QMap<int, QByteArray>& mine = images[areas.key()];
        if (areas->keys() != mine.keys())
            return text("the areas of station %1 differ", areas.key());
        for (auto image = areas->constBegin(); image != areas->constEnd(); ++image) {
            QByteArray& expected = mine[image.key()];
            if (image->constData() != expected.constData() && *image != expected)
                return text("image %1 %2 differs", areas.key(), image.key());
            expected = *image; // as long as neither is written, they need not be looked at again
        }
    }
    return QString();
}
