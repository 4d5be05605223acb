#include "writes.h"

#include "tag_file.h"

namespace
{

// Indexed by WriteState.
constexpr const char* STATE_TEXTS[] = {"waiting", "queued", "done", "failed", "refused"};

/// The write to the tag that was done last: it decides what is to be read back.
int lastDone(const QVector<Write>& writes, int tag)
{
    int last = -1;
    for (int i = 0; i < writes.size(); ++i)
        if (writes[i].tag == tag && writes[i].state == WriteState::Done &&
            (last < 0 || writes[i].finishedAt >= writes[last].finishedAt))
            last = i;
    return last;
}

QString takeDueTime(QString* text, Micros* due)
{
    const int colon = text->indexOf(QLatin1Char(':'));
    bool good = false;
    const double seconds = text->left(colon).toDouble(&good);
    if (colon < 0 || !good || !(seconds >= 0 && seconds < 1e9))
        return QStringLiteral("expected SECONDS:NAME=VALUE");
    *due = static_cast<Micros>(seconds * static_cast<double>(MICROS_PER_SECOND));
    text->remove(0, colon + 1);
    return QString();
}

} // namespace

QString addWrite(const QString& text, bool timed, const QVector<Tag>& tags, QVector<Write>* writes)
{
    Write write;
    QString rest = text;
    if (timed) {
        const QString problem = takeDueTime(&rest, &write.due);
        if (!problem.isEmpty())
            return problem;
    }
    const int equals = rest.indexOf(QLatin1Char('='));
    if (equals < 0)
        return QStringLiteral("expected NAME=VALUE");
    write.tag = tagByName(tags, rest.left(equals));
    if (write.tag < 0)
        return QStringLiteral("there is no tag '%1'").arg(rest.left(equals));
    const Tag& tag = tags[write.tag];
    if (!REGISTER_TYPES[tag.type].writable)
        return QStringLiteral("%1 cannot be written")
            .arg(QLatin1String(REGISTER_TYPES[tag.type].name));
    const ParsedValue parsed = parseValue(tag, rest.mid(equals + 1));
    if (!parsed.error.isEmpty())
        return parsed.error;
    write.value = parsed.bytes;
    write.shown = parsed.shown;
    write.hostKey = writes->size() + 1; // 0 is the key of the cyclic reads
    writes->append(write);
    return QString();
}

int findWrite(const QVector<Write>& writes, int hostKey, int hostSubKey)
{
    for (int i = 0; i < writes.size(); ++i)
        if (writes[i].hostKey == hostKey && writes[i].tag == hostSubKey &&
            writes[i].state == WriteState::Queued)
            return i;
    return -1;
}

void finishWrite(QVector<Write>* writes, int index, bool done, Micros now)
{
    Write& write = (*writes)[index];
    write.state = done ? WriteState::Done : WriteState::Failed;
    write.finishedAt = now;
}

int compareReadBack(QVector<Write>* writes, int tag, const QString& value, Micros receivedAt)
{
    const int last = lastDone(*writes, tag);
    if (last < 0 || (*writes)[last].readBack != ReadBack::Open ||
        receivedAt <= (*writes)[last].finishedAt)
        return -1;
    Write& write = (*writes)[last];
    write.readBack = write.shown == value ? ReadBack::Same : ReadBack::Different;
    write.readValue = value;
    return last;
}

bool writesGood(const QVector<Write>& writes)
{
    for (int i = 0; i < writes.size(); ++i) {
        const Write& write = writes[i];
        const bool overtaken = lastDone(writes, write.tag) != i;
        const bool found = write.readBack == ReadBack::Same || overtaken;
        if (write.state != WriteState::Done || !found)
            return false;
    }
    return true;
}

QString writeText(const Write& write, const QVector<Tag>& tags)
{
    return QStringLiteral("%1=%2").arg(tags[write.tag].name, write.shown);
}

const char* writeStateText(WriteState state)
{
    return STATE_TEXTS[static_cast<int>(state)];
}
