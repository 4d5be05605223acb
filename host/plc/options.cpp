#include "options.h"

#include "fault_text.h"
#include "option_values.h"

#include <QCommandLineParser>

namespace plc
{
namespace
{
constexpr const char* DESCRIPTION =
    "Simulated controller: answers a panel on a pseudo-terminal, a serial port or TCP, well or, "
    "with --fault, badly.\n"
    "SIGUSR1 makes it deaf for a while, SIGUSR2 saves the memory; SIGINT and SIGTERM end it.\n"
    "Exit status: 0 ended by a signal, 1 a link or file could not be opened or written, 2 wrong "
    "use.";

struct OptionText {
    const char* name;
    const char* value; ///< its name; null: the option takes none
    const char* standard;
    const char* help;
};

constexpr OptionText OPTIONS[] = {
    {"pty", nullptr, nullptr, "Create a pseudo-terminal and print its name."},
    {"link", "path", nullptr, "Also make a symbolic link to the pseudo-terminal (default none)."},
    {"tcp", "host:port", nullptr,
     "Listen on TCP, for the same bytes as on the serial line; port 0 picks a free one."},
    {"serial", "device", nullptr, "Answer on this serial port."},
    {"baud", "rate", "19200", "Bits per second of the serial port (default 19200)."},
    {"parity", "letter", "E", "Parity of the serial port: N, E or O (default E)."},
    {"stop", "bits", "1", "Stop bits of the serial port, 1 or 2 (default 1)."},
    {"stations", "numbers", "1,2", "Station numbers, 1 to 247 (default 1,2)."},
    {"remote", nullptr, nullptr, "Use the remote framing (default: the local one)."},
    {"deaf-ms", "ms", "1000",
     "How long SIGUSR1 makes the controller deaf, in milliseconds (default 1000)."},
    {"no-machine", nullptr, nullptr,
     "Leave out the machine that lives in each station's memory (default: it runs)."},
    {"load", "file", nullptr, "Load the memory from this file at the start (default: none)."},
    {"save", "file", nullptr,
     "Save the memory to this file at the end and on SIGUSR2 (default: none)."},
    {"seed", "number", "1", "Seed of the faults by chance, 0 to 4294967295 (default 1)."},
};

constexpr const char* FAULT = "fault";

QString faultHelp()
{
    return QStringLiteral(
               "A fault, KIND[:PARAMETER]@WHEN[=STATION], given any number of times (default "
               "none). KIND: %1. PARAMETER: milliseconds, bytes, an exception code or a station. "
               "WHEN: 5% by chance, 7 or 7,9 these requests, 7+ from that one on, /7 every 7th.")
        .arg(faultNames());
}

void addOptions(QCommandLineParser& parser)
{
    for (const OptionText& option : OPTIONS)
        parser.addOption({QLatin1String(option.name), QLatin1String(option.help),
                          QLatin1String(option.value), QLatin1String(option.standard)});
    parser.addOption({QLatin1String(FAULT), faultHelp(), QLatin1String(FAULT)});
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this.")});
}

/// @return what is wrong about which options are given
QString wrongUse(const QCommandLineParser& parser)
{
    const auto isSet = [&parser](const char* name) { return parser.isSet(QLatin1String(name)); };
    if (!parser.positionalArguments().isEmpty())
        return quoted(QStringLiteral("unexpected argument"),
                      parser.positionalArguments().constFirst());
    if (!isSet("pty") && !isSet("tcp") && !isSet("serial"))
        return QStringLiteral("give --pty, --tcp, --serial, or several of them");
    for (const OptionText& option : OPTIONS)
        if (isSet(option.name) && option.value != nullptr &&
            parser.value(QLatin1String(option.name)).isEmpty())
            return QStringLiteral("--%1 takes a value").arg(QLatin1String(option.name));
    if (isSet("link") && !isSet("pty"))
        return QStringLiteral("--link needs --pty");
    for (const char* name : {"baud", "parity", "stop"})
        if (isSet(name) && !isSet("serial"))
            return QStringLiteral("--%1 needs --serial").arg(QLatin1String(name));
    return {};
}

/// @return the first thing wrong about the values
QString takeValues(const QCommandLineParser& parser, Options& options)
{
    const auto isSet = [&parser](const char* name) { return parser.isSet(QLatin1String(name)); };
    const auto value = [&parser](const char* name) { return parser.value(QLatin1String(name)); };
    options.pty = isSet("pty");
    options.linkPath = value("link");
    options.remote = isSet("remote");
    options.machine = !isSet("no-machine");
    options.loadPath = value("load");
    options.savePath = value("save");
    options.serial.device = value("serial");
    for (const QString& error :
         {parseStations(value("stations"), options.stations),
          parseDeafMs(value("deaf-ms"), options.deafMs),
          isSet("tcp") ? parseTcp(value("tcp"), options) : QString(),
          parseBaud(value("baud"), options.serial.baud),
          parseParity(value("parity"), options.serial.parity),
          parseStopBits(value("stop"), options.serial.stopBits),
          parseSeed(value("seed"), options.seed),
          parseFaults(parser.values(QLatin1String(FAULT)), options.stations, options.faults)})
        if (!error.isEmpty())
            return error;
    return {};
}
} // namespace

ParsedOptions parseOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(DESCRIPTION));
    addOptions(parser);
    ParsedOptions result;
    if (!parser.parse(arguments))
        result.error = parser.errorText();
    else if (parser.isSet(QStringLiteral("help")))
        result.help = parser.helpText();
    else
        result.error = wrongUse(parser);
    if (result.error.isEmpty() && result.help.isEmpty())
        result.error = takeValues(parser, result.options);
    return result;
}
} // namespace plc
