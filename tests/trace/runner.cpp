#include "trace/runner.h"

#include "support/at_rest.h"
#include "support/invariants.h"
#include "support/reply.h"
#include "trace/words.h"

#include <atomic>
#include <thread>

namespace
{
/// The result of a call, and what it has left in the runtime's argument when the line asks for it.
QString resultAnd(const TraceLine& line, int result, const QString& argument)
{
    const QString both = text("%1 ", result) + argument;
    return line.expected.size() == 1 ? QString::number(result) : both.trimmed();
}

bool endsWithPlus(const QString& word)
{
    return word.endsWith(QLatin1Char('+'));
}
} // namespace

Runner::Runner(const Library& loaded) : library(loaded), driver(*BIND(loaded, PLC_driver)) {}

const Runner::Command* Runner::commandOf(const TraceLine& line)
{
    static const Command table[] = {{"set", &Runner::set},           {"is", &Runner::set},
                                    {"add", &Runner::add},           {"regroup", &Runner::regroup},
                                    {"cut", &Runner::cut},           {"get", &Runner::get, true},
                                    {"put", &Runner::put},           {"fill", &Runner::fill},
                                    {"image", &Runner::image, true}, {">", &Runner::request, true},
                                    {">+", &Runner::request, true},  {"<", &Runner::reply},
                                    {"<+", &Runner::reply},          {"frame", &Runner::frame},
                                    {"list", &Runner::list},         {"event", &Runner::event},
                                    {"station", &Runner::station},   {"turns", &Runner::turns},
                                    {"address", &Runner::address},   {"sums", &Runner::sums},
                                    {"digit", &Runner::digit},       {"log", &Runner::log},
                                    {"waits", &Runner::waits}};
    for (const Command& row : table) {
        if (line.words.value(0) == QLatin1String(row.name))
            return &row;
    }
    return nullptr;
}

void Runner::reset()
{
    around = &plainly;
    putToRest(driver, *BIND(library, DataStorage), settings);
    BIND(library, SetComInfo)(&settings);
    BIND(library, RegistCallBackFuncIntf)(onFinish, onFail);
}

QString Runner::outcome(const TraceLine& line)
{
    return (this->*commandOf(line)->run)(line);
}

QString Runner::run(const TraceLine& line)
{
    const Command* command = commandOf(line);
    if (!command)
        return text("no such command");
    const bool says = command->run == &Runner::request || command->run == &Runner::event;
    if (!says && !line.expects)
        return outcome(line), QString();
    QString is = outcome(line);
    QString expected = (says ? QStringList(line.words.mid(1)) : line.expected).join(text(" "));
    if (command->hasBytes) {
        is.remove(QLatin1Char(' '));
        expected.remove(QLatin1Char(' '));
    }
    return is == expected ? QString() : text("got '%1', expected '%2'", is, expected);
}

/// Both `set` and `is`; the last two are no ints.
QString Runner::set(const TraceLine& line)
{
    static const QStringList names =
        text("maxBlockLength defaultStation retryLimit retryCount stationPerVar frameCount "
             "framesDone remoteFraming ownNode writeMode scanDone scanCount writeBurst "
             "onceReadBurst currentSource key result lastFailed stationsOff")
            .split(QLatin1Char(' '));
    int failed = driver.lastFailed ? 1 : 0, off = driver.stationMap.size();
    // clang-format off
    int* const values[] = {
        &settings.maxBlockLength, &settings.defaultStation, &settings.retryLimit,
        &settings.retryCount, &settings.stationPerVar, &settings.frameCount, &settings.framesDone,
        &settings.remoteFraming, &settings.ownNode, &settings.writeMode, &settings.scanDone,
        &driver.scanCount, &driver.writeBurst, &driver.onceReadBurst, &driver.currentSource,
        &driver.retVar.hostKey, &driver.retVar.result, &failed, &off};
    // clang-format on
    const int index = names.indexOf(line.words.value(1));
    if (index < 0)
        qFatal("line %d: no such field", line.number);
    if (line.words.at(0) == QLatin1String("set"))
        *values[index] = line.expected.value(0).toInt();
    driver.lastFailed = failed != 0;
    return QString::number(*values[index]);
}

QString Runner::add(const TraceLine& line)
{
    const QString where = line.words.value(1);
    RW_VAR var = variableOf(line.words.mid(2));
    const int mode = number(line.words, "mode", ADD_UNCHANGED);
    int size = 0;
    for (int i = 0; i < number(line.words, "times", 1); ++i) {
        if (where == QLatin1String("read"))
            size = call(0, BIND(library, AddListReadVar), &var);
        else
            size = call(0,
                        where == QLatin1String("write") ? BIND(library, AddListWriteVar)
                                                        : BIND(library, AddListOnceReadVar),
                        &var, mode);
        var.hostKey += number(line.words, "nextKey", 0);
        var.address += number(line.words, "nextAddress", 0);
    }
    return resultAnd(line, size, shapeOf(var));
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
    return QString::number(call(0, BIND(library, ReCreatReadVarList), &vars));
}

QString Runner::cut(const TraceLine& line)
{
    RW_VAR var = variableOf(line.words.mid(1));
    QList<RW_VAR> out;
    out << var; // there are pieces of another variable in the list already, which the runtime
                // shares
    const QList<RW_VAR> shared = out;
    const auto function = BIND(library, WhetherGroup);
    const int length = number(line.words, "length", 0), limit = number(line.words, "limit", 0);
    around([&] { function(length, limit, &var, &out); });
    return allOf(out.mid(1) << var, shapeOf);
}

QString Runner::get(const TraceLine& line)
{
    QString address = unquoted(line.words.value(2));
    QByteArray out("old");
    const int result =
        call(0, BIND(library, GetRegisterData), 0, typeNamed(line.words.value(1)), &address,
             number(line.words, "station", 1), &out, line.words.value(3).toInt());
    const int zeros = number(line.words, "zeros", 0);
    const bool asSaid = zeros > 0 && out == QByteArray(zeros, '\0');
    return text("%1 ", result).append(asSaid ? QString() : hexText(out)).trimmed();
}

QString Runner::put(const TraceLine& line)
{
    QString address = unquoted(line.words.value(2));
    QString label = option(line.words, "label", QString());
    QByteArray value = QByteArray::fromHex(line.words.value(4).toLatin1());
    const int result =
        call(0, BIND(library, SetRegisterData), &label, typeNamed(line.words.value(1)), &address,
             number(line.words, "station", 1), &value, line.words.value(3).toInt(),
             number(line.words, "key", 0), number(line.words, "sub", 0));
    return resultAnd(line, result, value.isEmpty() ? text("''") : hexText(value));
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
    if (line.words.size() == 1)
        return text(store.isEmpty() ? "none" : "some");
    const QByteArray bytes =
        store.value(line.words.at(1).toInt()).value(line.words.value(2).toInt());
    return line.words.value(3) == QLatin1String("size")
               ? QString::number(bytes.size())
               : hexText(bytes.mid(number(line.words, "from", 0)));
}

QString Runner::request(const TraceLine& line)
{
    const Protocol* sent = call<Protocol*>(nullptr, BIND(library, ComCommunication));
    if (!sent)
        return text("nothing");
    if (sent->frameLength != sent->frame.size())
        return text("frameLength is not the frame's");
    const QByteArray body = sent->frame.left(sent->frameLength - 2);
    const bool asSaid = endsWithPlus(line.words.at(0)) && withCrc(body) == sent->frame;
    return hexText(asSaid ? body : sent->frame);
}

QString Runner::reply(const TraceLine& line)
{
    const QStringList words = line.words.mid(1);
    const QByteArray bytes = hexBytes(words.filter(QRegExp(text("^[0-9A-Fa-f]+$"))));
    QByteArray received = endsWithPlus(line.words.at(0)) ? withCrc(bytes) : bytes;
    const int length = number(line.words, "length", received.size());
    received += hexOption(line.words, "beyond");
    const RW_VAR* served = call<RW_VAR*>(nullptr, BIND(library, DataCom), &received, length);
    if (served && !served->data.isEmpty())
        return text("the returned record carries data");
    return QString::number(served ? served->result : int{RESULT_RETRY});
}

/// A pending frame: what is asked of it, or, without a "=", what becomes of it.
QString Runner::frame(const TraceLine& line)
{
    if (line.words.value(2) == QLatin1String("gone")) {
        driver.frameList.clear();
        settings.frameCount = 0;
        return text("nothing");
    }
    if (line.words.size() == 2 && !line.expects) {
        // The second frame of a pair is unfinished until the first has been answered.
        const QByteArray bytes = driver.frameList.value(0).frame;
        return text("%1 of %2 bytes: ", driver.frameList.size(), bytes.size()) + hexText(bytes);
    }
    Protocol& head = driver.frameList[line.words.value(1).toInt()];
    static const QStringList names =
        text("reply offset data of done address flag rmw key type").split(QLatin1Char(' '));
    int* const values[] = {&head.replyLength,    &head.replyDataOffset, &head.replyDataLength,
                           &settings.frameCount, &settings.framesDone,  &head.var.address,
                           &head.var.rwFlag,     &head.var.rmwStep,     &head.var.hostKey,
                           &head.var.regType};
    QStringList shown;
    for (const QString& word : line.words.mid(2) + line.expected) { // NAME:VALUE
        const QString name = word.section(QLatin1Char(':'), 0, 0);
        const int index = names.indexOf(name);
        if (name == QLatin1String("bytes"))
            head.frame = hexOption(line.words, "bytes");
        else if (index < 0)
            qFatal("line %d: no such field", line.number);
        else if (!line.expects)
            *values[index] = word.section(QLatin1Char(':'), 1).toInt();
        else
            shown << text("%1:%2", name, *values[index]);
    }
    const bool spare = (head.reserved1 | head.reserved2 | head.reserved3) != 0;
    return spare ? text("a reserved field is not 0") : shown.join(text(" "));
}

QString Runner::list(const TraceLine& line)
{
    const QString name = line.words.value(1), what = line.words.value(2);
    QList<RW_VAR>& entries = name == QLatin1String("write")  ? driver.writeList
                             : name == QLatin1String("once") ? driver.onceReadList
                                                             : driver.readList;
    if (what == QLatin1String("gone"))
        entries.clear();
    if (what == QLatin1String("size"))
        return QString::number(entries.size());
    if (what == QLatin1String("keys"))
        return allOf(entries, [](const RW_VAR& var) { return QString::number(var.hostKey); });
    if (what == QLatin1String("last"))
        return allOf(entries.mid(std::max(0, entries.size() - 1)), shapeOf);
    return allOf(entries, what == QLatin1String("places")   ? placeOf
                          : what == QLatin1String("fields") ? fieldsOf
                                                            : shapeOf);
}

QString Runner::event(const TraceLine& /*line*/)
{
    return events.isEmpty() ? text("none") : events.takeFirst();
}

QString Runner::station(const TraceLine& line)
{
    const auto function = BIND(library, EnCommStation);
    const int number = line.words.value(1).toInt(), enable = line.words.value(2).toInt();
    around([&] { function(number, enable); });
    return QString();
}

/// One letter a turn with a good reply: the list it served, or - for nothing to send.
QString Runner::turns(const TraceLine& line)
{
    QString served;
    while (served.size() < line.expected.value(0).size()) {
        const Protocol* sent = BIND(library, ComCommunication)();
        QByteArray good = sent ? goodReply(*sent, 1) : QByteArray();
        if (sent)
            BIND(library, DataCom)(&good, good.size());
        served += QLatin1Char(!sent                                  ? '-'
                              : driver.currentSource == SOURCE_WRITE ? 'W'
                              : driver.currentSource == SOURCE_ONCE  ? 'O'
                                                                     : 'C');
    }
    return served;
}

QString Runner::address(const TraceLine& line)
{
    return QString::number(call(-1, BIND(library, PLCAddressChangeIntef),
                                typeNamed(line.words.value(1)), unquoted(line.words.value(2))));
}

/// CRC, sum, LRC and XOR of bytes.
QString Runner::sums(const TraceLine& line)
{
    const QByteArray bytes = hexBytes(line.words.mid(1, 1));
    const auto* in = reinterpret_cast<const unsigned char*>(bytes.constData());
    const auto size = static_cast<unsigned short>(number(line.words, "length", bytes.size()));
    return text("%1 %2 %3 %4", BIND(library, CalCRC)(in, size), BIND(library, CalSUM)(in, size),
                BIND(library, CalLRC)(in, size), BIND(library, CalXOR)(in, size));
}

/// A number as a hexadecimal digit, and as a character that is one.
QString Runner::digit(const TraceLine& line)
{
    const int value = line.words.value(1).toInt();
    return text("%1 %2", BIND(library, DigitalToASCII)(value),
                BIND(library, ASCIIToDigital)(value));
}

/// What the log holds of one message, without the time.
QString Runner::log(const TraceLine& line)
{
    const QByteArray message = line.words.value(1).toLatin1();
    const auto function = BIND(library, customMessageHandler);
    QFile file(text("debug.log"));
    file.remove();
    around([&] { function(QtDebugMsg, message.constData()); });
    const bool open = file.open(QIODevice::ReadOnly);
    return QString::fromLatin1(open ? file.readAll() : QByteArray())
        .replace(QRegExp(text("^[0-9.:]{20,23}:|\n$")), QString());
}

/// Whether the rest of the line, done in a thread, has to wait for a lock, and leaves alone until
/// then the frame that a read step completes.
QString Runner::waits(const TraceLine& line)
{
    const QString which = line.words.value(1);
    QMutex& mutex = which == QLatin1String("lists")   ? driver.listMutex
                    : which == QLatin1String("store") ? driver.storageMutex
                                                      : driver.stationMutex;
    TraceLine rest = line;
    rest.words = line.words.mid(2);
    const QByteArray frame = driver.frameList.value(1).frame;
    if (!mutex.tryLock(1000))
        return text("it is held already");
    std::atomic<bool> done{false};
    std::thread caller([&] {
        outcome(rest);
        done = true;
    });
    // Far longer than the microseconds of a call that nothing holds up, even where a machine is
    // busy if it is not to wait.
    const int most = line.expected.value(0) == QLatin1String("yes") ? 50 : 10000;
    for (int ms = 0; ms < most && !done; ++ms)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const bool early = !done && driver.frameList.value(1).frame != frame;
    const QString waited = text(early ? "too early" : done ? "no" : "yes");
    mutex.unlock();
    caller.join();
    return waited;
}

QString Runner::ending()
{
    const QString held = heldLock(driver);
    return held.isEmpty() && !events.isEmpty() ? text("not expected: ") + events.first() : held;
}
