#include "fault_text.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace plc
{
namespace
{
const FaultKindInfo* kindByName(const QString& name)
{
    const auto* const found =
        std::find_if(FAULT_KINDS.begin(), FAULT_KINDS.end(), [&name](const FaultKindInfo& info) {
            return name == QLatin1String(info.name);
        });
    return found == FAULT_KINDS.end() ? nullptr : found;
}

/// @return what was expected; empty when `text` is a good parameter
QString parseParameter(const FaultKindInfo& info, const QString& text, int& parameter)
{
    const QString name = QLatin1String(info.name);
    if (info.need == PARAMETER_NONE)
        return QStringLiteral("no parameter after %1").arg(name);
    bool isNumber = false;
    parameter = text.toInt(&isNumber);
    if (isNumber && parameter >= info.lowest && parameter <= info.highest)
        return {};
    return QStringLiteral("%1 from %2 to %3 after %4:")
        .arg(QLatin1String(info.what))
        .arg(info.lowest)
        .arg(info.highest)
        .arg(name);
}

QString parseKind(const QString& text, Fault& fault)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    const FaultKindInfo* info = kindByName(text.left(colon));
    if (info == nullptr)
        return QStringLiteral("a kind, one of ") + faultNames();
    fault.kind = info->kind;
    fault.parameter = info->standard;
    if (colon >= 0)
        return parseParameter(*info, text.mid(colon + 1), fault.parameter);
    return info->need == PARAMETER_REQUIRED ? parseParameter(*info, {}, fault.parameter)
                                            : QString();
}

bool parseNumbers(const QString& text, QList<qint64>& numbers)
{
    for (const QString& part : text.split(QLatin1Char(','))) {
        bool isNumber = false;
        numbers.append(part.toLongLong(&isNumber));
        if (!isNumber || numbers.last() < 1)
            return false;
    }
    return true;
}

bool parseWhen(const QString& text, Fault& fault)
{
    static const QRegularExpression form(
        QStringLiteral(R"(\A(?:(?<percent>[0-9]+(?:\.[0-9]+)?)%|(?<from>[0-9]+)\+|)"
                       R"(/(?<every>[0-9]+)|(?<numbers>[0-9]+(?:,[0-9]+)*))\z)"));
    const QRegularExpressionMatch match = form.match(text);
    const auto part = [&match](const char* name) { return match.captured(QLatin1String(name)); };
    if (!part("percent").isEmpty()) {
        fault.when = WHEN_PERCENT;
        fault.percent = part("percent").toDouble();
        return fault.percent > 0 && fault.percent <= 100;
    }
    if (!part("from").isEmpty())
        fault.when = WHEN_FROM;
    else if (!part("every").isEmpty())
        fault.when = WHEN_EVERY;
    else
        fault.when = WHEN_NUMBERS;
    return parseNumbers(part("from") + part("every") + part("numbers"), fault.numbers);
}

bool parseStation(const QString& text, int& station)
{
    bool isNumber = false;
    station = text.toInt(&isNumber);
    return isNumber && station >= MIN_STATION && station <= MAX_STATION;
}
} // namespace

ParsedFault parseFault(const QString& text)
{
    ParsedFault parsed;
    const int at = text.indexOf(QLatin1Char('@'));
    const int equals = text.indexOf(QLatin1Char('='), at);
    parsed.expected = parseKind(text.left(at), parsed.fault);
    if (!parsed.expected.isEmpty())
        return parsed;
    const QString when = at < 0 ? QString() : text.mid(at + 1, equals < 0 ? -1 : equals - at - 1);
    if (!parseWhen(when, parsed.fault))
        parsed.expected =
            QStringLiteral("@ and when: a chance up to 100%, request numbers from 1 on (7 or 7,9), "
                           "from one on (7+) or every so many (/7)");
    else if (equals >= 0 && !parseStation(text.mid(equals + 1), parsed.fault.station))
        parsed.expected =
            QStringLiteral("a station from %1 to %2 after =").arg(MIN_STATION).arg(MAX_STATION);
    return parsed;
}

QString faultNames()
{
    QStringList names;
    for (const FaultKindInfo& info : FAULT_KINDS)
        names << QLatin1String(info.name);
    return names.join(QStringLiteral(", "));
}
} // namespace plc
