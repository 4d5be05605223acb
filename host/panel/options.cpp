#include "options.h"

#include "option_table.h"

#include <QCommandLineParser>

namespace
{

struct Reader {
    QCommandLineParser parser;
    QStringList errors;

    QString text(const char* name) const { return parser.value(QLatin1String(name)); }
    bool isSet(const char* name) const { return parser.isSet(QLatin1String(name)); }
    void complain(const QString& error) { errors << error; }
};

QString helpText(const OptionRow& row)
{
    const QString meaning = QLatin1String(row.meaning);
    const QString preset = QLatin1String(row.preset);
    return preset.isEmpty() ? meaning : QStringLiteral("%1 (default %2)").arg(meaning, preset);
}

void describe(QCommandLineParser* parser)
{
    parser->setApplicationDescription(QStringLiteral(
        "Stand-in runtime: drives a controller through the driver library and shows its tags.\n"
        "Exit status: 0 all well, 1 wrong use or an unusable file, 2 a write was not done or read\n"
        "back differently, 3 a tag had no fresh value at the end, 4 the link was down at the "
        "end."));
    parser->addPositionalArgument(
        QStringLiteral("TAGFILE"),
        QStringLiteral("Lines name,type,address,length,station,format; see the examples"));
    for (const OptionRow& row : OPTIONS) {
        QCommandLineOption option(QLatin1String(row.name), helpText(row));
        option.setValueName(QLatin1String(row.unit));
        option.setDefaultValue(QLatin1String(row.preset));
        parser->addOption(option);
    }
    parser->addOption(
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help")});
}

int number(Reader* reader, const char* name)
{
    for (const OptionRow& row : OPTIONS) {
        if (row.kind != OptionKind::Number || QLatin1String(row.name) != QLatin1String(name))
            continue;
        bool good = false;
        const int value = reader->text(name).toInt(&good);
        if (!good || value < row.lowest || value > row.highest)
            reader->complain(QStringLiteral("--%1 takes %2 to %3, not '%4'")
                                 .arg(QLatin1String(name))
                                 .arg(row.lowest)
                                 .arg(row.highest)
                                 .arg(reader->text(name)));
        return value;
    }
    Q_UNREACHABLE();
}

void takeTcp(Reader* reader, TcpSettings* tcp)
{
    const QString text = reader->text("tcp");
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    tcp->host = text.left(colon);
    if (tcp->host.startsWith(QLatin1Char('[')) && tcp->host.endsWith(QLatin1Char(']')))
        tcp->host = tcp->host.mid(1, tcp->host.size() - 2);
    tcp->port = text.mid(colon + 1).toUShort();
    if (colon < 1 || tcp->port == 0)
        reader->complain(QStringLiteral("--tcp takes HOST:PORT, not '%1'").arg(text));
}

void takeLink(Reader* reader, Options* options)
{
    if (reader->isSet("serial") == reader->isSet("tcp"))
        reader->complain(QStringLiteral("one of --serial and --tcp is needed"));
    const int baud = number(reader, "baud");
    const int stop = number(reader, "stop");
    const QString parity = reader->text("parity");
    if (parity.size() != 1 || !QStringLiteral("NEO").contains(parity))
        reader->complain(QStringLiteral("--parity takes N, E or O, not '%1'").arg(parity));
    else
        options->serial = {reader->text("serial"), baud, parity.at(0).toLatin1(), stop};
    options->timeout = number(reader, "timeout") * MICROS_PER_MILLI;
    options->delay = number(reader, "delay") * MICROS_PER_MILLI;
    if (reader->isSet("tcp"))
        takeTcp(reader, &options->tcp);
    options->tcp.baud = baud;
    options->tcp.timeout = options->timeout;
}

void takeGoal(Reader* reader, Options* options)
{
    options->writes = reader->parser.values(QStringLiteral("write"));
    options->timedWrites = reader->parser.values(QStringLiteral("write-at"));
    options->goal.duration = number(reader, "duration") * MICROS_PER_SECOND;
    options->goal.once = reader->isSet("once");
    options->goal.written = !options->writes.isEmpty() && !reader->isSet("duration");
}

struct FormatName {
    const char* name;
    Output run, command; ///< of a run, and of a command that ends by itself
};

constexpr FormatName FORMAT_NAMES[] = {
    {"screen", Output::Screen, Output::Screen},
    {"json", Output::Json, Output::Json},
    {"text", Output::Text, Output::Events},
};

QString usualFormat(const Terminals& terminals, bool plain)
{
    if (!terminals.screen)
        return QStringLiteral("json");
    return plain ? QStringLiteral("text") : QStringLiteral("screen");
}

void takeOutput(Reader* reader, const Terminals& terminals, Options* options)
{
    const bool command = options->goal.once || options->goal.written;
    const QString name =
        reader->isSet("format")
            ? reader->text("format")
            : usualFormat(terminals, command || (options->trace && terminals.errors));
    for (const FormatName& format : FORMAT_NAMES) {
        if (name != QLatin1String(format.name))
            continue;
        options->output = command ? format.command : format.run;
        if (options->output == Output::Screen && !terminals.screen)
            reader->complain(QStringLiteral("--format screen needs a terminal"));
        if (options->output == Output::Screen && options->trace && terminals.errors)
            reader->complain(QStringLiteral("--trace would spoil the screen, send it to a file "
                                            "with 2>FILE"));
        return;
    }
    reader->complain(QStringLiteral("--format takes screen, json or text, not '%1'").arg(name));
}

Options takeOptions(Reader* reader, const Terminals& terminals)
{
    Options options;
    const QStringList files = reader->parser.positionalArguments();
    if (files.size() != 1)
        reader->complain(QStringLiteral("one tag file is needed"));
    else
        options.tagFile = files.constFirst();
    takeLink(reader, &options);
    options.library = reader->text("library");
    options.summaryFile = reader->text("summary");
    options.pcapFile = reader->text("pcap");
    options.retries = number(reader, "retries");
    options.patience = number(reader, "fails");
    options.block = number(reader, "block");
    options.remote = reader->isSet("remote");
    options.echo = reader->isSet("echo");
    options.trace = reader->isSet("trace");
    takeGoal(reader, &options);
    takeOutput(reader, terminals, &options);
    return options;
}

} // namespace

ParsedOptions parseOptions(const QStringList& arguments, const Terminals& terminals)
{
    Reader reader;
    describe(&reader.parser);
    ParsedOptions parsed;
    if (!reader.parser.parse(arguments)) {
        parsed.errors << reader.parser.errorText();
    } else if (reader.isSet("help")) {
        parsed.help = reader.parser.helpText();
    } else {
        parsed.options = takeOptions(&reader, terminals);
        parsed.errors = reader.errors;
    }
    return parsed;
}
