#include "tag_place.h"

#include "tag_address.h"

#include <QStringList>

namespace
{

int typeByName(const QString& name)
{
    for (int type = 0; type < REGISTER_TYPE_COUNT; ++type)
        if (name.compare(QLatin1String(REGISTER_TYPES[type].name), Qt::CaseInsensitive) == 0)
            return type;
    return -1;
}

QString expectedType()
{
    QStringList names, prefixes;
    for (int type = 0; type < REGISTER_TYPE_COUNT; ++type) {
        names << QLatin1String(REGISTER_TYPES[type].name);
        prefixes << QLatin1String(SHORT_PREFIXES[type]);
    }
    const QLatin1Char blank(' ');
    return QStringLiteral("one of the types %1, or one of %2 and an address, such as MW100")
        .arg(names.join(blank), prefixes.join(blank));
}

/// The address of the type that `text` names, plain or in a short form; -1 when it names none.
int addressOfType(int type, const QString& text)
{
    int address = -1;
    if (parseAddress(type, text, &address))
        return address;
    Place place;
    return parseShortForm(text, &place).isEmpty() && place.type == type ? place.address : -1;
}

bool addressOfAnyType(const QString& text)
{
    for (int type = 0; type < REGISTER_TYPE_COUNT; ++type)
        if (addressOfType(type, text) >= 0)
            return true;
    return false;
}

QVector<FieldProblem> problem(const CsvField& field, const QString& expected)
{
    return {{field.column, expected, field.text}};
}

QVector<FieldProblem> placeOfAddress(const CsvField& type, const CsvField& address, Place* place)
{
    const QString expected = parseShortForm(address.text, place);
    if (expected.isEmpty())
        return {};
    return address.text.isEmpty() || addressOfAnyType(address.text)
               ? problem(type, expectedType())
               : problem(address, expected + QStringLiteral(", as there is no type"));
}

} // namespace

QVector<FieldProblem> parsePlace(const CsvField& type, const CsvField& address, Place* place)
{
    if (type.text.isEmpty())
        return placeOfAddress(type, address, place);
    *place = {typeByName(type.text), -1};
    if (place->type >= 0) {
        place->address = addressOfType(place->type, address.text);
        return place->address >= 0 ? QVector<FieldProblem>()
                                   : problem(address, expectedAddress(place->type));
    }
    const QString expected = parseShortForm(type.text, place);
    if (expected.isEmpty())
        return address.text.isEmpty() || addressOfType(place->type, address.text) == place->address
                   ? QVector<FieldProblem>()
                   : problem(address,
                             QStringLiteral("nothing or %1, as the type column says %2")
                                 .arg(addressText(place->type, place->address), type.text));
    QVector<FieldProblem> problems = problem(type, place->type < 0 ? expectedType() : expected);
    if (!address.text.isEmpty() && !addressOfAnyType(address.text))
        problems << problem(address, QStringLiteral("an address, such as 100 or 2.5"));
    return problems;
}
