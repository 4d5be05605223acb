#include "value_json.h"

#include <QJsonArray>

#include <cmath>

namespace
{

QJsonValue jsonOfBits(quint32 bits, const Tag& tag)
{
    switch (tag.format) {
    case Format::Bool:
        return bits != 0;
    case Format::Hex:
        return textOfBits(bits, tag.format, formatWidth(tag.type, tag.format));
    case Format::Float32: {
        const float value = floatOfBits(bits);
        return std::isfinite(value) ? QJsonValue(static_cast<double>(value)) : QJsonValue();
    }
    default:
        return integerOfBits(bits, tag.format);
    }
}

} // namespace

QJsonValue jsonValue(const Tag& tag, const QByteArray& raw)
{
    QJsonArray values;
    for (const quint32 bits : valueBits(tag, raw))
        values << jsonOfBits(bits, tag);
    return values.size() == 1 ? values.at(0) : values;
}
