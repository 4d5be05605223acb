// Values in every format: as a host read delivers them, as text and JSON show them, and as a person
// types them.
#include "support/cases.h"
#include "tag_file.h"
#include "value_json.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace
{

/// The tag of a file of the one line "x,..."; a case that gives none is wrong itself.
Tag tagOf(const QByteArray& line)
{
    const TagFile file = parseTags(QString(), text("x," + line));
    if (file.tags.size() != 1)
        qFatal("%s", qPrintable(file.errors.join(text("; "))));
    return file.tags[0];
}

QString value(const Given& in)
{
    const Tag tag = tagOf(in[0]);
    const QByteArray raw = QByteArray::fromHex(in[1]);
    const QJsonArray json = {jsonValue(tag, raw)};
    const QByteArray shown = QJsonDocument(json).toJson(QJsonDocument::Compact);
    // A number that is not finite is null before it is shown as null.
    if (json.toVariantList() != QJsonDocument::fromJson(shown).array().toVariantList())
        return text("not shown as it is: " + shown);
    return formatValue(tag, raw) + text(" | " + shown);
}

QString typed(const Given& in)
{
    const ParsedValue parsed = parseValue(tagOf(in[0]), text(in[1]));
    const QString taken = text(parsed.bytes.toHex()) + parsed.shown;
    return parsed.error.isEmpty() ? text(parsed.bytes.toHex() + ": ") + parsed.shown
                                  : parsed.error + taken;
}

} // namespace

int main(int argc, char** argv)
{
    return runCases(argc, argv, CASES, {{"value", 2, value}, {"typed", 2, typed}});
}
