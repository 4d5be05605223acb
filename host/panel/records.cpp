#include "records.h"

#include "short_form.h"
#include "value_json.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

QByteArray record(const Recorder& recorder, Micros at, QJsonObject object)
{
    const qint64 ms = recorder.startedAtMs + at / MICROS_PER_MILLI;
    object[QLatin1String("time")] =
        QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(Qt::ISODateWithMs);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QJsonObject tagObject(const Panel& panel, int index, Quality quality)
{
    const Tag& tag = panel.tags[index];
    const TagState& state = panel.states[index];
    return {
        {QStringLiteral("tag"), tag.name},
        {QStringLiteral("address"), shortForm(tag)},
        {QStringLiteral("station"), tag.station},
        {QStringLiteral("value"), state.raw.isEmpty() ? QJsonValue() : jsonValue(tag, state.raw)},
        {QStringLiteral("quality"), QLatin1String(qualityText(quality))}};
}

void addTags(Recorder* recorder, const Panel& panel, Micros now, QList<QByteArray>* records)
{
    recorder->tagsTold.resize(panel.tags.size());
    for (int i = 0; i < panel.tags.size(); ++i) {
        const Quality quality = qualityAt(panel, i, now);
        const QString told = QLatin1String(qualityText(quality)) + panel.states[i].value;
        if (quality == Quality::Waiting || told == recorder->tagsTold[i])
            continue;
        recorder->tagsTold[i] = told;
        *records << record(*recorder, now, tagObject(panel, i, quality));
    }
}

void addWrites(Recorder* recorder, const Panel& panel, Micros now, QList<QByteArray>* records)
{
    recorder->writesTold.resize(panel.writes.size()); // WriteState::Waiting, which is not told
    for (int i = 0; i < panel.writes.size(); ++i) {
        const Write& write = panel.writes[i];
        if (write.state == recorder->writesTold[i])
            continue;
        recorder->writesTold[i] = write.state;
        *records << record(*recorder, now,
                           {{QStringLiteral("tag"), panel.tags[write.tag].name},
                            {QStringLiteral("write"), write.shown},
                            {QStringLiteral("state"), QLatin1String(writeStateText(write.state))}});
    }
}

} // namespace

QList<QByteArray> changeRecords(Recorder* recorder, Panel* panel)
{
    QList<QByteArray> records;
    for (const Event& event : panel->events)
        records << record(*recorder, event.at, {{QStringLiteral("event"), event.text}});
    panel->events.clear();
    const Micros now = panel->clock();
    addWrites(recorder, *panel, now, &records);
    addTags(recorder, *panel, now, &records);
    return records;
}
