#include "short_form.h"

#include "tag_address.h"

#include <algorithm>

namespace
{

int typeByPrefix(const QString& prefix)
{
    for (int type = 0; type < REGISTER_TYPE_COUNT; ++type)
        if (prefix.compare(QLatin1String(SHORT_PREFIXES[type]), Qt::CaseInsensitive) == 0)
            return type;
    return -1;
}

} // namespace

QString parseShortForm(const QString& text, Place* place)
{
    const auto digit =
        std::find_if_not(text.begin(), text.end(), [](QChar c) { return c.isLetter(); });
    const int letters = static_cast<int>(digit - text.begin());
    *place = {typeByPrefix(text.left(letters)), -1};
    if (place->type < 0)
        return QStringLiteral("a short form such as MW100");
    int address = 0;
    if (!parseAddress(place->type, text.mid(letters), &address))
        return QStringLiteral("%1 and %2")
            .arg(QLatin1String(SHORT_PREFIXES[place->type]), expectedAddress(place->type));
    place->address = address;
    return QString();
}

QString shortForm(const Tag& tag)
{
    return QLatin1String(SHORT_PREFIXES[tag.type]) + addressText(tag.type, tag.address);
}
