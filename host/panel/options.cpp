#include "options.h"

#include <QCommandLineParser>

namespace
{

// clang-format off
struct Number {
    const char* name;
    const char* unit;
    const char* meaning;
    const char* preset;
    int lowest, highest;
};

constexpr Number BAUD     = {"baud", "BAUD", "Speed of the line", "19200", 300, 4000000};
constexpr Number STOP     = {"stop", "BITS", "Stop bits", "1", 1, 2};
constexpr Number TIMEOUT  = {"timeout", "MS", "Reply time-out", "300", 1, 60000};
constexpr Number DELAY    = {"delay", "MS", "Pause after each reply", "0", 0, 60000};
constexpr Number RETRIES  = {"retries", "N", "Failed replies before a variable is given up", "2", 0, 100};
constexpr Number BLOCK    = {"block", "N", "Longest read in words or bytes, longest write in bytes", "60", 1, 240};
constexpr Number DURATION = {"duration", "SECONDS", "End after this time, 0: run until interrupted", "0", 0, 1000000000};
// clang-format on

void addNumber(QCommandLineParser* parser, const Number& number)
{
    parser->addOption({QLatin1String(number.name), QLatin1String(number.meaning),
                       QLatin1String(number.unit), QLatin1String(number.preset)});
}

int takeNumber(const QCommandLineParser& parser, const Number& number, QStringList* errors)
{
    const QString text = parser.value(QLatin1String(number.name));
    bool good = false;
    const int value = text.toInt(&good);
    if (!good || value < number.lowest || value > number.highest)
        *errors << QStringLiteral("--%1 takes %2 to %3, not '%4'")
                       .arg(QLatin1String(number.name))
                       .arg(number.lowest)
                       .arg(number.highest)
                       .arg(text);
    return value;
}

void takeTcp(const QString& text, Options* options, QStringList* errors)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    options->tcpHost = text.left(colon);
    options->tcpPort = text.mid(colon + 1).toUShort();
    if (colon < 1 || options->tcpPort == 0)
        *errors << QStringLiteral("--tcp takes HOST:PORT, not '%1'").arg(text);
}

void takeLink(const QCommandLineParser& parser, Options* options, QStringList* errors)
{
    const QString serial = QStringLiteral("serial"), tcp = QStringLiteral("tcp");
    if (parser.isSet(serial) == parser.isSet(tcp))
        *errors << QStringLiteral("one of --serial and --tcp is needed");
    options->serialDevice = parser.value(serial);
    if (parser.isSet(tcp))
        takeTcp(parser.value(tcp), options, errors);
    const QString parity = parser.value(QStringLiteral("parity"));
    if (parity != QLatin1String("N") && parity != QLatin1String("E") &&
        parity != QLatin1String("O"))
        *errors << QStringLiteral("--parity takes N, E or O, not '%1'").arg(parity);
    else
        options->parity = parity.at(0).toLatin1();
}

void describe(QCommandLineParser* parser)
{
    parser->setApplicationDescription(QStringLiteral(
        "Stand-in runtime: drives a controller through the driver library and shows its tags.\n"
        "Exit status: 0 all well, 1 wrong use, 2 a write was not done or read back differently,\n"
        "3 a tag had no fresh value at the end."));
    parser->addPositionalArgument(QStringLiteral("TAGFILE"),
                                  QStringLiteral("name,type,address,length,station,format"));
    const auto option = [parser](const char* name, const char* meaning, const char* value,
                                 const char* preset = "") {
        parser->addOption({QLatin1String(name), QLatin1String(meaning), QLatin1String(value),
                           QLatin1String(preset)});
    };
    option("library", "Driver library", "PATH");
    option("serial", "Serial device or pseudo-terminal", "DEVICE");
    option("tcp", "TCP peer that carries the bytes of the serial line", "HOST:PORT");
    option("parity", "N, E or O", "LETTER", "E");
    for (const Number& number : {BAUD, STOP, TIMEOUT, DELAY, RETRIES, BLOCK, DURATION})
        addNumber(parser, number);
    parser->addOption({QStringLiteral("remote"), QStringLiteral("Use the remote framing")});
    option("summary", "Write the summary to a file as well", "FILE");
    option("write", "Write at the start; may be repeated", "NAME=VALUE");
    option("write-at", "Write at a time; may be repeated", "SECONDS:NAME=VALUE");
}

} // namespace

QString parseOptions(const QStringList& arguments, Options* options)
{
    QCommandLineParser parser;
    describe(&parser);
    parser.addHelpOption();
    parser.process(arguments);

    QStringList errors;
    if (parser.positionalArguments().size() != 1)
        errors << QStringLiteral("one tag file is needed");
    else
        options->tagFile = parser.positionalArguments().constFirst();
    takeLink(parser, options, &errors);
    options->library = parser.value(QStringLiteral("library"));
    options->summaryFile = parser.value(QStringLiteral("summary"));
    options->baud = takeNumber(parser, BAUD, &errors);
    options->stopBits = takeNumber(parser, STOP, &errors);
    options->timeout = takeNumber(parser, TIMEOUT, &errors) * MICROS_PER_MILLI;
    options->delay = takeNumber(parser, DELAY, &errors) * MICROS_PER_MILLI;
    options->retries = takeNumber(parser, RETRIES, &errors);
    options->block = takeNumber(parser, BLOCK, &errors);
    options->duration = takeNumber(parser, DURATION, &errors) * MICROS_PER_SECOND;
    options->remote = parser.isSet(QStringLiteral("remote"));
    options->writes = parser.values(QStringLiteral("write"));
    options->timedWrites = parser.values(QStringLiteral("write-at"));
    return errors.join(QLatin1Char('\n'));
}
