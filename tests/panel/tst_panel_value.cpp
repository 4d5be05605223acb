// Values in every format: as a host read delivers them, as text and JSON show them, and as a person
// types them.
#include "cases.h"
#include "tag_file.h"
#include "value_json.h"

#include <QJsonArray>
#include <QJsonDocument>

class PanelValue : public QObject
{
    Q_OBJECT
private slots:
    void value_data() { addCases(); }
    void value();
    void typed_data() { addCases(); }
    void typed();
};

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

} // namespace

void PanelValue::value()
{
    const QList<QByteArray> in = given(2);
    const Tag tag = tagOf(in[0]);
    const QByteArray raw = QByteArray::fromHex(in[1]);
    const QJsonArray json = {jsonValue(tag, raw)};
    const QByteArray shown = QJsonDocument(json).toJson(QJsonDocument::Compact);
    QTEST(formatValue(tag, raw) + text(" | " + shown), "expected");
    // A number that is not finite is shown as null, too.
    QCOMPARE(json.toVariantList(), QJsonDocument::fromJson(shown).array().toVariantList());
}

void PanelValue::typed()
{
    const QList<QByteArray> in = given(2);
    const ParsedValue parsed = parseValue(tagOf(in[0]), text(in[1]));
    if (parsed.error.isEmpty())
        QTEST(text(parsed.bytes.toHex() + ": ") + parsed.shown, "expected");
    else
        QTEST(parsed.error, "expected");
    QVERIFY(parsed.error.isEmpty() || (parsed.bytes.isEmpty() && parsed.shown.isEmpty()));
}

QTEST_APPLESS_MAIN(PanelValue)
#include "tst_panel_value.moc"
