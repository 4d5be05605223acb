#include "option_values.h"

#include "fault_text.h"

#include <QUrl>

namespace plc
{
namespace
{
constexpr int MIN_BAUD = 50;
constexpr int MAX_BAUD = 4000000;

/// @return what the option takes; empty when the text is a number in the range
QString parseInt(const char* option, const char* unit, int lowest, int highest, const QString& text,
                 int& value)
{
    bool isNumber = false;
    value = text.toInt(&isNumber);
    if (isNumber && value >= lowest && value <= highest)
        return {};
    return quoted(QStringLiteral("%1 takes %2 from %3 to %4, not")
                      .arg(QLatin1String(option), QLatin1String(unit))
                      .arg(lowest)
                      .arg(highest),
                  text);
}
} // namespace

QString quoted(const QString& what, const QString& text)
{
    return what + QLatin1String(" \"") + text + QLatin1Char('"');
}

QString parseStations(const QString& text, QList<int>& stations)
{
    for (const QString& part : text.split(QLatin1Char(','))) {
        bool isNumber = false;
        const int station = part.toInt(&isNumber);
        if (!isNumber || station < MIN_STATION || station > MAX_STATION)
            return quoted(QStringLiteral("--stations takes numbers from 1 to 247 and commas, not"),
                          text);
        if (!stations.contains(station))
            stations.append(station);
    }
    return {};
}

QString parseTcp(const QString& text, Options& options)
{
    QUrl url;
    url.setAuthority(text, QUrl::StrictMode);
    if (url.host().isEmpty() || url.port() < 0 || !url.userInfo().isEmpty())
        return quoted(QStringLiteral("--tcp takes HOST:PORT, not"), text);
    options.tcpHost = url.host();
    options.tcpPort = static_cast<quint16>(url.port());
    return {};
}

QString parseDeafMs(const QString& text, int& deafMs)
{
    return parseInt("--deaf-ms", "milliseconds", 1, MAX_WAIT_MS, text, deafMs);
}

QString parseBaud(const QString& text, int& baud)
{
    return parseInt("--baud", "bits per second", MIN_BAUD, MAX_BAUD, text, baud);
}

QString parseParity(const QString& text, char& parity)
{
    const bool known = text.size() == 1 && QStringLiteral("NEO").contains(text);
    parity = known ? text.at(0).toLatin1() : parity;
    return known ? QString() : quoted(QStringLiteral("--parity takes N, E or O, not"), text);
}

QString parseStopBits(const QString& text, int& stopBits)
{
    return parseInt("--stop", "stop bits", 1, 2, text, stopBits);
}

QString parseSeed(const QString& text, quint32& seed)
{
    bool isNumber = false;
    seed = text.toUInt(&isNumber);
    return isNumber
               ? QString()
               : quoted(QStringLiteral("--seed takes a number from 0 to 4294967295, not"), text);
}

QString parseFaults(const QStringList& texts, const QList<int>& stations, QList<Fault>& faults)
{
    for (const QString& text : texts) {
        const ParsedFault parsed = parseFault(text);
        if (!parsed.expected.isEmpty())
            return quoted(QStringLiteral("--fault: expected %1, in").arg(parsed.expected), text);
        if (parsed.fault.station != EVERY_STATION && !stations.contains(parsed.fault.station))
            return quoted(QStringLiteral("--fault: expected one of --stations after =, in"), text);
        faults.append(parsed.fault);
    }
    return {};
}
} // namespace plc
