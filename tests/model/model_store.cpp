#include "model/model.h"

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

QString differs(const char* what, qint64 actual, qint64 expected)
{
    return QString::fromLatin1("%1 is %2, not %3")
        .arg(QLatin1String(what))
        .arg(actual)
        .arg(expected);
}

bool sameRecord(const RW_VAR& a, const RW_VAR& b)
{
    return a.hostKey == b.hostKey && a.hostSubKey == b.hostSubKey && a.rwFlag == b.rwFlag &&
           a.remoteMode == b.remoteMode && a.nodeId == b.nodeId && a.result == b.result &&
           a.regType == b.regType && a.address == b.address && a.station == b.station &&
           a.length == b.length && a.rmwStep == b.rmwStep && a.auxParam == b.auxParam &&
           a.label == b.label && a.addressText == b.addressText && a.data == b.data;
}

QString listDifference(const char* name, const QList<RW_VAR>& actual, const QList<RW_VAR>& expected)
{
    if (actual.size() != expected.size())
        return differs(name, actual.size(), expected.size());
    for (int i = 0; i < actual.size(); ++i) {
        if (!sameRecord(actual.at(i), expected.at(i)))
            return QString::fromLatin1("%1 differs at %2").arg(QLatin1String(name)).arg(i);
    }
    return QString();
}
} // namespace

void Model::put(const Target& target, const QByteArray& bits)
{
    if (target.isNone())
        return;
    QByteArray& image = images[qMakePair(target.station, target.area)];
    if (image.size() < target.end())
        image.append(QByteArray(static_cast<int>(target.end()) - image.size(), '\0'));
    char* out = image.data();
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

int Model::get(int type, const QString& text, int station, QByteArray& out, int count)
{
    out.clear();
    const int address = modelAddress(type, text);
    if (isBeyond(type, address, count)) {
        if (count > 0 && count <= MAX_IMAGE_BYTES / 2)
            out = QByteArray(2 * count, '\0');
        return 0;
    }
    QByteArray& image = images[qMakePair(station, areaOf(type))];
    const int offset = std::max(widthOf(type) / 8, 1) * address;
    if (image.size() < offset + 4 * count)
        image.append(QByteArray(offset + 4 * count - image.size(), '\0'));
    const Target target = hostTarget(type, address, station, count);
    for (int i = 0; isBits(type) && i < target.bits; ++i)
        out.append(static_cast<char>((image.at((address + i) / 8) >> ((address + i) % 8)) & 1));
    if (!isBits(type))
        out = image.mid(offset, static_cast<int>(target.bits) / 8);
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

int Model::set(const QString& label, int type, const QString& text, int station, QByteArray& value,
               int count, int key, int subKey)
{
    const int address = modelAddress(type, text);
    if (!attached || count > MAX_ELEMENTS || isBeyond(type, address, count))
        return 0;
    RW_VAR record;
    record.hostKey = key;
    record.hostSubKey = subKey;
    record.rwFlag = RW_WRITE;
    record.remoteMode = settings.remoteFraming;
    record.nodeId = settings.ownNode;
    record.label = label;
    record.addressText = text;
    record.regType = type;
    record.address = address;
    record.station = settings.stationPerVar != 0 ? station : settings.defaultStation;
    record.length = count;
    if (settings.writeMode != WRITE_QUEUE) {
        const Target target = hostTarget(type, address, record.station, count);
        QByteArray bits = normalised(type, value, count);
        if (!isBits(type))
            bits = bitsOf(bits, target.bits);
        for (int i = 0; type == OUTPUT_BIT && i < bits.size(); ++i)
            bits[i] = static_cast<char>(bits.at(i) & 1);
        put(target, bits);
        return 1;
    }
    if (type < OUTPUT_BIT || type > SPECIAL_BIT || areaOf(type) == AREA_INPUT)
        return 0;
    value = normalised(type, value, count);
    return queue(record, value);
}

QString Model::difference(const Communication_Protocol& driver, const Store& store,
                          const ComInfo& actual)
{
    const struct {
        const char* name;
        int is, expected;
    } numbers[] = {{"retryCount", actual.retryCount, settings.retryCount},
                   {"frameCount", actual.frameCount, settings.frameCount},
                   {"framesDone", actual.framesDone, settings.framesDone},
                   {"scanDone", actual.scanDone, settings.scanDone},
                   {"scanCount", driver.scanCount, scanCount},
                   {"currentSource", driver.currentSource, source},
                   {"writeBurst", driver.writeBurst, writeBurst},
                   {"onceReadBurst", driver.onceReadBurst, onceBurst},
                   {"lastFailed", driver.lastFailed, failed},
                   {"frames", driver.frameList.size(), frames.size()},
                   {"stations off", driver.stationMap.size(), off.size()}};
    for (const auto& number : numbers) {
        if (number.is != number.expected)
            return differs(number.name, number.is, number.expected);
    }
    for (const QString& wrong : {listDifference("readList", driver.readList, reads),
                                 listDifference("writeList", driver.writeList, writes),
                                 listDifference("onceReadList", driver.onceReadList, onceReads)}) {
        if (!wrong.isEmpty())
            return wrong;
    }
    if (!sameRecord(driver.retVar, served))
        return QString::fromLatin1("the returned record differs");
    for (int i = 0; i < frames.size(); ++i) {
        const Protocol& frame = driver.frameList.at(i);
        const ModelFrame& expected = frames.at(i);
        if (!sameRecord(frame.var, expected.var) || frame.replyLength != expected.replyLength)
            return QString::fromLatin1("frame %1 differs").arg(i);
        const int word = (frame.frame.at(4) & 0xFF) * 256 + (frame.frame.at(5) & 0xFF);
        if (expected.word >= 0 && word != expected.word)
            return differs("the merged word", word, expected.word);
    }
    int present = 0;
    for (auto areas = store.cbegin(); areas != store.cend(); ++areas) {
        for (auto image = areas->cbegin(); image != areas->cend(); ++image, ++present) {
            const QPair<int, int> place(areas.key(), image.key());
            const QByteArray expected = images.value(place, QByteArray("?"));
            QPair<QByteArray, QByteArray>& known = equal[place];
            if (known.first.constData() == image->constData() &&
                known.second.constData() == expected.constData())
                continue;
            if (*image != expected)
                return QString::fromLatin1("image %1 %2 differs")
                    .arg(place.first)
                    .arg(place.second);
            known = {*image, expected};
        }
    }
    return present == images.size() ? QString() : differs("images", present, images.size());
}
