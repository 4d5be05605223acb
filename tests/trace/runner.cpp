#include "trace/runner.h"

#include "support/at_rest.h"
#include "trace/words.h"

namespace
{
QString compare(const QString& actual, const QString& expected)
{
    if (actual == expected)
        return QString();
    return QString::fromLatin1("got '%1', expected '%2'").arg(actual, expected);
}

QString compare(int actual, const TraceLine& line)
{
    return line.expects ? compare(QString::number(actual), line.expected.value(0)) : QString();
}

bool endsWithPlus(const QString& word)
{
    return word.endsWith(QLatin1Char('+'));
}
} // namespace

Runner::Runner(const Library& loaded) : library(loaded), driver(*BIND(loaded, PLC_driver))
{
    const struct {
        const char* name;
        Command command;
    } table[] = {
        {"set", &Runner::set},         {"is", &Runner::set},          {"add", &Runner::add},
        {"regroup", &Runner::regroup}, {"cut", &Runner::cut},         {"get", &Runner::get},
        {"put", &Runner::put},         {"fill", &Runner::fill},       {"image", &Runner::image},
        {">", &Runner::request},       {">+", &Runner::request},      {"<", &Runner::reply},
        {"<+", &Runner::reply},        {"frame", &Runner::frame},     {"list", &Runner::list},
        {"event", &Runner::event},     {"station", &Runner::station}, {"turns", &Runner::turns},
        {"address", &Runner::address},
    };
    for (const auto& row : table)
        commands.insert(QString::fromLatin1(row.name), row.command);
}

void Runner::reset()
{
    putToRest(driver, *BIND(library, DataStorage), settings);
    BIND(library, SetComInfo)(&settings);
    BIND(library, RegistCallBackFuncIntf)(onFinish, onFail);
}

QString Runner::run(const TraceLine& line)
{
    const Command command = commands.value(line.words.value(0));
    return command ? (this->*command)(line) : QString::fromLatin1("no such command");
}

int* Runner::field(const QString& name)
{
    const QStringList names =
        QString::fromLatin1(
            "maxBlockLength defaultStation retryLimit retryCount stationPerVar "
            "frameCount framesDone remoteFraming ownNode writeMode scanDone scanCount "
            "writeBurst onceReadBurst currentSource key result")
            .split(QLatin1Char(' '));
    int* const values[] = {
        &settings.maxBlockLength, &settings.defaultStation, &settings.retryLimit,
        &settings.retryCount,     &settings.stationPerVar,  &settings.frameCount,
        &settings.framesDone,     &settings.remoteFraming,  &settings.ownNode,
        &settings.writeMode,      &settings.scanDone,       &driver.scanCount,
        &driver.writeBurst,       &driver.onceReadBurst,    &driver.currentSource,
        &driver.retVar.hostKey,   &driver.retVar.result};
    const int index = names.indexOf(name);
    return index < 0 ? nullptr : values[index];
}

/// Both `set` and `is`; lastFailed is no int.
QString Runner::set(const TraceLine& line)
{
    const QString name = line.words.value(1);
    const bool assigns = line.words.at(0) == QLatin1String("set");
    int failed = driver.lastFailed ? 1 : 0;
    int* const value = name == QLatin1String("lastFailed") ? &failed : field(name);
    if (!value)
        return QString::fromLatin1("no such field");
    if (!assigns)
        return compare(*value, line);
    *value = line.expected.value(0).toInt();
    driver.lastFailed = failed != 0;
    return QString();
}

QList<RW_VAR>* Runner::listNamed(const QString& name)
{
    if (name == QLatin1String("write"))
        return &driver.writeList;
    return name == QLatin1String("once") ? &driver.onceReadList : &driver.readList;
}

QString Runner::add(const TraceLine& line)
{
    const QString where = line.words.value(1);
    RW_VAR var = variableOf(line.words.mid(2));
    const int mode = number(line.words, "mode", ADD_UNCHANGED);
    int size = 0;
    for (int i = 0; i < number(line.words, "times", 1); ++i) {
        if (where == QLatin1String("write"))
            size = BIND(library, AddListWriteVar)(&var, mode);
        else if (where == QLatin1String("once"))
            size = BIND(library, AddListOnceReadVar)(&var, mode);
        else
            size = BIND(library, AddListReadVar)(&var);
        var.hostKey += number(line.words, "nextKey", 0);
        var.address += number(line.words, "nextAddress", 0);
    }
    if (line.expected.size() > 1) { // the caller's record afterwards
        const QString wrong = compare(shapeOf(var), line.expected.at(1));
        if (!wrong.isEmpty())
            return wrong;
    }
    return compare(size, line);
}

QString Runner::regroup(const TraceLine& line)
{
    QList<VAR_DESC> vars;
    for (const QString& word : line.words.mid(1)) { // TYPE:TEXT+LENGTH@STATION
        VAR_DESC desc = VAR_DESC();
        const QString place = word.section(QLatin1Char(':'), -1).section(QLatin1Char('@'), 0, 0);
        desc.regType = static_cast<unsigned char>(
            word.contains(QLatin1Char(':')) ? typeNamed(word.section(QLatin1Char(':'), 0, 0)) : 8);
        desc.station = static_cast<unsigned char>(
            word.contains(QLatin1Char('@')) ? word.section(QLatin1Char('@'), 1).toInt() : 1);
        desc.addressText = place.section(QLatin1Char('+'), 0, 0);
        desc.length = place.section(QLatin1Char('+'), 1).toInt();
        desc.label = QString::number(vars.size());
        vars << desc;
    }
    return compare(BIND(library, ReCreatReadVarList)(&vars), line);
}

QString Runner::cut(const TraceLine& line)
{
    RW_VAR var = variableOf(line.words.mid(1));
    QList<RW_VAR> out;
    BIND(library, WhetherGroup)
    (number(line.words, "length", 0), number(line.words, "limit", 0), &var, &out);
    out << var;
    return compare(shapesOf(out), line.expected.join(QString::fromLatin1(" ")));
}

QString Runner::get(const TraceLine& line)
{
    QString address = unquoted(line.words.value(2));
    QByteArray out("old");
    const int result = BIND(library, GetRegisterData)(0, typeNamed(line.words.value(1)), &address,
                                                      number(line.words, "station", 1), &out,
                                                      line.words.value(3).toInt());
    const QString zeros = option(line.words, "zeros", QString());
    if (!zeros.isEmpty() && out != QByteArray(zeros.toInt(), '\0'))
        return QString::fromLatin1("got %1 bytes, expected zeros").arg(out.size());
    const QString wrong = zeros.isEmpty()
                              ? compare(hexText(out), hexText(hexBytes(line.expected.mid(1))))
                              : QString();
    return wrong.isEmpty() ? compare(result, line) : wrong;
}

QString Runner::put(const TraceLine& line)
{
    QString address = unquoted(line.words.value(2));
    QString label = option(line.words, "label", QString());
    QByteArray value = QByteArray::fromHex(line.words.value(4).toLatin1());
    const int result = BIND(library, SetRegisterData)(
        &label, typeNamed(line.words.value(1)), &address, number(line.words, "station", 1), &value,
        line.words.value(3).toInt(), number(line.words, "key", 0), number(line.words, "sub", 0));
    if (line.expected.size() > 1) { // the runtime's array afterwards
        const QString wrong = compare(hexText(value), unquoted(line.expected.at(1)));
        if (!wrong.isEmpty())
            return wrong;
    }
    return compare(result, line);
}

QString Runner::fill(const TraceLine& line)
{
    const int station = line.words.value(1).toInt();
    (*BIND(library, DataStorage))[station][line.words.value(2).toInt()] =
        hexBytes(line.words.mid(3));
    return QString();
}

QString Runner::image(const TraceLine& line)
{
    const auto& store = *BIND(library, DataStorage);
    const int station = line.words.value(1).toInt();
    const int area = line.words.value(2).toInt();
    if (line.words.size() == 1)
        return compare(store.isEmpty() ? QString::fromLatin1("none") : QString(),
                       line.expected.value(0));
    const QByteArray bytes = store.value(station).value(area);
    if (line.words.value(3) == QLatin1String("size"))
        return compare(bytes.size(), line);
    return compare(hexText(bytes.mid(number(line.words, "from", 0))),
                   hexText(hexBytes(line.expected)));
}

QString Runner::request(const TraceLine& line)
{
    const Protocol* sent = BIND(library, ComCommunication)();
    const QStringList words = line.words.mid(1);
    if (words.value(0) == QLatin1String("nothing"))
        return sent ? compare(hexText(sent->frame), words.at(0)) : QString();
    const QByteArray expected =
        endsWithPlus(line.words.at(0)) ? withCrc(hexBytes(words)) : hexBytes(words);
    if (sent && sent->frameLength != sent->frame.size())
        return QString::fromLatin1("frameLength is not the frame's");
    return compare(sent ? hexText(sent->frame) : QString::fromLatin1("nothing"), hexText(expected));
}

QString Runner::reply(const TraceLine& line)
{
    const QByteArray bytes =
        hexBytes(line.words.mid(1).filter(QRegExp(QString::fromLatin1("^[0-9A-Fa-f]+$"))));
    QByteArray received = endsWithPlus(line.words.at(0)) ? withCrc(bytes) : bytes;
    received += QByteArray::fromHex(option(line.words, "beyond", QString()).toLatin1());
    const int beyond = option(line.words, "beyond", QString()).size() / 2;
    const int length = number(line.words, "length", received.size() - beyond);
    const RW_VAR* served = BIND(library, DataCom)(&received, length);
    if (!served->data.isEmpty())
        return QString::fromLatin1("the returned record carries data");
    return compare(served->result, line);
}

QString Runner::frame(const TraceLine& line)
{
    const Protocol& head = driver.frameList.at(line.words.value(1).toInt());
    const QStringList names = QString::fromLatin1("reply offset data of done address flag rmw key")
                                  .split(QLatin1Char(' '));
    const QStringList values =
        numbers({head.replyLength, head.replyDataOffset, head.replyDataLength, settings.frameCount,
                 settings.framesDone, head.var.address, head.var.rwFlag, head.var.rmwStep,
                 head.var.hostKey})
            .split(QLatin1Char(','));
    for (const QString& word : line.expected) { // NAME:VALUE
        const int index = names.indexOf(word.section(QLatin1Char(':'), 0, 0));
        const QString wrong = compare(values.value(index), word.section(QLatin1Char(':'), 1));
        if (!wrong.isEmpty())
            return word + QLatin1String(": ") + wrong;
    }
    const bool spare = (head.reserved1 | head.reserved2 | head.reserved3) != 0;
    return spare ? QString::fromLatin1("a reserved field is not 0") : QString();
}

QString Runner::address(const TraceLine& line)
{
    return compare(BIND(library, PLCAddressChangeIntef)(typeNamed(line.words.value(1)),
                                                        unquoted(line.words.value(2))),
                   line);
}

QString Runner::ending()
{
    for (QMutex* mutex : {&driver.listMutex, &driver.storageMutex, &driver.stationMutex}) {
        if (!mutex->tryLock())
            return QString::fromLatin1("a lock is held");
        mutex->unlock();
    }
    return events.isEmpty() ? QString() : QString::fromLatin1("not expected: ") + events.at(0);
}

QString Runner::list(const TraceLine& line)
{
    const QList<RW_VAR>& entries = *listNamed(line.words.value(1));
    const QString what = line.words.value(2);
    QStringList shown;
    for (const RW_VAR& var : entries) {
        if (what == QLatin1String("keys"))
            shown << QString::number(var.hostKey);
        else if (what == QLatin1String("places"))
            shown << QString::fromLatin1("%1/%2").arg(var.station).arg(var.regType);
        else if (what == QLatin1String("fields"))
            shown << numbers({var.hostKey, var.hostSubKey, var.rwFlag, var.remoteMode, var.nodeId,
                              var.result | var.rmwStep | var.auxParam, var.station}) +
                         QString::fromLatin1(",%1,%2").arg(var.label, var.addressText);
        else
            shown << shapeOf(var);
    }
    if (what == QLatin1String("size"))
        return compare(entries.size(), line);
    if (what == QLatin1String("last"))
        return compare(shown.value(shown.size() - 1), line.expected.value(0));
    return compare(shown.join(QString::fromLatin1(" ")),
                   line.expected.join(QString::fromLatin1(" ")));
}

QString Runner::event(const TraceLine& line)
{
    const QString happened = events.isEmpty() ? QString::fromLatin1("none") : events.takeFirst();
    return compare(happened, line.words.mid(1).join(QString::fromLatin1(" ")));
}

QString Runner::station(const TraceLine& line)
{
    BIND(library, EnCommStation)(line.words.value(1).toInt(), line.words.value(2).toInt());
    return QString();
}

/// One letter a turn with a good reply: the list it served, or - for nothing to send.
QString Runner::turns(const TraceLine& line)
{
    QString served;
    while (served.size() < line.expected.value(0).size()) {
        const Protocol* sent = BIND(library, ComCommunication)();
        QByteArray good = sent ? withCrc(QByteArray(sent->replyLength - 2, '\0')) : QByteArray();
        if (sent)
            BIND(library, DataCom)(&good, good.size());
        const char* letters = driver.currentSource == SOURCE_WRITE  ? "W"
                              : driver.currentSource == SOURCE_ONCE ? "O"
                                                                    : "C";
        served += QString::fromLatin1(sent ? letters : "-");
    }
    return compare(served, line.expected.value(0));
}
