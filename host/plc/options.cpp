#include "options.h"

#include <QCommandLineParser>
#include <QUrl>

namespace plc
{
namespace
{
constexpr int MAX_STATION = 247;
constexpr int MAX_DEAF_MS = 3600 * 1000;

QString quoted(const char* what, const QString& text)
{
    return QLatin1String(what) + QLatin1String(" \"") + text + QLatin1Char('"');
}

QString parseStations(const QString& text, QList<int>& stations)
{
    for (const QString& part : text.split(QLatin1Char(','))) {
        bool isNumber = false;
        const int station = part.toInt(&isNumber);
        if (!isNumber || station < 1 || station > MAX_STATION)
            return quoted("--stations takes numbers from 1 to 247 and commas, not", text);
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
        return quoted("--tcp takes HOST:PORT, not", text);
    options.tcpHost = url.host();
    options.tcpPort = static_cast<quint16>(url.port());
    return {};
}

QString parseDeafMs(const QString& text, int& deafMs)
{
    bool isNumber = false;
    deafMs = text.toInt(&isNumber);
    if (!isNumber || deafMs < 1 || deafMs > MAX_DEAF_MS)
        return quoted("--deaf-ms takes milliseconds from 1 to 3600000, not", text);
    return {};
}
} // namespace

ParsedOptions parseOptions(const QStringList& arguments)
{
    const auto text = [](const char* latin1) { return QString::fromLatin1(latin1); };
    const QCommandLineOption pty(text("pty"), text("Create a pseudo-terminal and print its name."));
    const QCommandLineOption link(
        text("link"), text("Also make a symbolic link to the pseudo-terminal."), text("path"));
    const QCommandLineOption tcp(text("tcp"),
                                 text("Listen on TCP, for the same bytes as on the serial line; "
                                      "port 0 picks a free one."),
                                 text("host:port"));
    const QCommandLineOption stations(text("stations"),
                                      text("Station numbers, 1 to 247 (default 1,2)."),
                                      text("numbers"), text("1,2"));
    const QCommandLineOption remote(text("remote"),
                                    text("Use the remote framing instead of the local one."));
    const QCommandLineOption deaf(text("deaf-ms"),
                                  text("How long SIGUSR1 makes the controller deaf, in "
                                       "milliseconds (default 1000)."),
                                  text("ms"), text("1000"));
    const QCommandLineOption help({text("h"), text("help")}, text("Show this help."));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        text("Simulated controller: answers a panel on a pseudo-terminal or on TCP.\n"
             "SIGUSR1 makes it deaf for a while; SIGINT and SIGTERM end it."));
    parser.addOptions({pty, link, tcp, stations, remote, deaf, help});

    ParsedOptions result;
    Options& options = result.options;
    const bool known = parser.parse(arguments);
    if (!known)
        result.error = parser.errorText();
    else if (parser.isSet(help))
        result.help = parser.helpText();
    else if (!parser.positionalArguments().isEmpty())
        result.error = quoted("unexpected argument", parser.positionalArguments().constFirst());
    else if (!parser.isSet(pty) && !parser.isSet(tcp))
        result.error = text("give --pty, --tcp, or both");
    else if (parser.isSet(link) && !parser.isSet(pty))
        result.error = text("--link needs --pty");
    if (!result.error.isEmpty() || !result.help.isEmpty())
        return result;

    options.pty = parser.isSet(pty);
    options.linkPath = parser.value(link);
    options.remote = parser.isSet(remote);
    result.error = parseStations(parser.value(stations), options.stations);
    if (result.error.isEmpty())
        result.error = parseDeafMs(parser.value(deaf), options.deafMs);
    if (result.error.isEmpty() && parser.isSet(tcp))
        result.error = parseTcp(parser.value(tcp), options);
    return result;
}
} // namespace plc
