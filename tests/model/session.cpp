#include "model/session.h"

#include "support/reply.h"
#include "trace/words.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int LEAST = std::numeric_limits<int>::min();
constexpr int MOST = std::numeric_limits<int>::max();
// clang-format off
constexpr int EDGES[] = {
    -1, 0, LEAST, MOST, 65535, 65536, 65537, 8191, 8192, 32768, MAX_ELEMENTS, MAX_ELEMENTS + 1,
    -65536, 1 << 30, MOST - 1, MAX_IMAGE_BYTES, MAX_IMAGE_BYTES / 4 - 8, MAX_IMAGE_BYTES - 1,
    MAX_IMAGE_BYTES / 2, MAX_IMAGE_BYTES + 1};
// clang-format on
constexpr int ODD_TYPES[] = {-1, 14, 15, LEAST, MOST, 255};
constexpr int STATIONS[] = {1, 2, 1, 0, 1, 2, -1, 257};
const char* const ODD_TEXTS[] = {
    "",   ".",    "12",  "1.2.3", "abc", "5.",   ".7",          "x.3",           "2147483648",
    "-5", "-1.3", "1.9", " 7",    "+3",  "0x10", "268435455.7", "99999999999.9", "2147483647"};
constexpr int FAR_CALLS = 2;      ///< calls of a session that may move megabytes
constexpr int FAR_COUNT = 300;    ///< elements from which on a call is one of them
constexpr int REPLY_LIMIT = 4096; ///< longer replies are not given
constexpr int SHOWN = 120;        ///< characters of a record

template <typename T, std::size_t N>
T pick(const T (&table)[N], int index)
{
    return table[static_cast<std::size_t>(index) % N];
}

QByteArray bytesOf(int size, int seed)
{
    QByteArray bytes(std::max(size, 0), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(seed >> 2);
        seed = (seed * 77 + 29) & 0xFFFF;
    }
    return bytes;
}

/// Good replies, and all the bad ones that lines and controllers are known for.
QByteArray replyTo(const Protocol& head, const QByteArray& last, int flavour, int seed)
{
    const bool given = head.replyLength <= REPLY_LIMIT;
    const QByteArray good = given ? goodReply(head, seed, 77) : QByteArray();
    const QByteArray body = good.left(good.size() - 2);
    // clang-format off
    switch (flavour) {
    case 1: return QByteArray();
    case 2: return good.left(1);
    case 3: return bytes("FF FF"); // the CRC of nothing
    case 4: return withCrc(body + bytesOf(seed, 1));
    case 5: return withCrc(body.left(2) + bytesOf(1, seed) + body.mid(3));
    case 6: return withCrc(body.left(body.size() - 1));
    case 7: return withCrc(bytes("01 83 02"));
    case 8: return bytes("01 83 02");
    case 9: return withCrc(bytesOf(2, seed) + body.mid(2)); // another station, function
    case 10: return head.frame + good; // the echo
    case 11: return bytesOf(seed % 9, seed) + good;
    case 12: return body + bytesOf(2, seed);
    case 13: return good.left(seed % 8);
    case 15: return good + bytesOf(seed, 3);
    case 16: return last;
    case 17: return bytesOf(300, seed);
    case 19: return bytesOf(given ? head.replyLength : 0, seed);
    default: return good;
    }
    // clang-format on
}
} // namespace

QVector<Operation> operationsOf(const unsigned char* bytes, std::size_t size)
{
    QVector<Operation> operations(static_cast<int>(size / OPERATION_BYTES));
    for (Operation& operation : operations) {
        std::copy(bytes, bytes + OPERATION_BYTES, operation.bytes.begin());
        bytes += OPERATION_BYTES;
    }
    return operations;
}

Session::Session() : watch(PLC_driver, DataStorage)
{
    resetDriver();
    model.settings = settings;
}

QString Session::both(const Made& made, const std::function<int()>& modelled,
                      const std::function<int()>& called, const std::function<bool()>& same)
{
    told << made.words;
    watch.begin(made.kind, made.mayAdd);
    const int expected = modelled(), is = called();
    const QStringList happened = events, modelEvents = model.events;
    model.events.clear();
    const QString wrong = watch.end(made.target);
    if (!wrong.isEmpty())
        return wrong;
    if (is != expected || happened != modelEvents)
        return text("result %1 '%2', the model says %3 '%4'", is, happened.join(text(";")),
                    expected, modelEvents.join(text(";")));
    return same() ? model.difference(PLC_driver, DataStorage, settings)
                  : text("the runtime's argument differs");
}

/// Mostly small, sometimes two bytes, sometimes a limit. Those above `most` are rationed.
int Session::number(int selector, int value, int most)
{
    const int small = value % 24;
    const int drawn = selector < 160   ? small
                      : selector < 208 ? (selector - 160) * 256 + value
                                       : pick(EDGES, value);
    const bool rejected = drawn >= MAX_IMAGE_BYTES;
    return drawn > most && !rejected && ++farCalls > FAR_CALLS ? small : drawn;
}

RW_VAR Session::recordOf(const Operation& o, bool write)
{
    RW_VAR var;
    const int keys = o[KEYS], flavour = o[FLAVOUR], type = o[TYPE];
    var.hostKey = keys % 4 == 3 ? keys - 100 : keys % 4;
    var.hostSubKey = keys / 4 % 2;
    var.nodeId = keys / 8 % 4 == 3 ? 2 : 1;
    var.rwFlag = keys / 32 == 7 ? flavour % 4 : write ? RW_WRITE : RW_READ;
    var.rmwStep = keys / 32 == 6 ? -1 : 0;
    var.auxParam = keys / 32 == 5 ? flavour * -65793 : 0;
    var.label = QString::number(++serial);
    var.regType = type < 240 ? type % REGISTER_TYPE_COUNT : pick(ODD_TYPES, type);
    var.address = number(o[ADDRESS], o[ADDRESS_VALUE], 65537);
    const bool dotted = var.regType >= INPUT_BIT && var.regType <= MEMORY_BIT;
    var.addressText = flavour % 16 == 15 ? text(pick(ODD_TEXTS, o[ADDRESS_VALUE]))
                      : dotted           ? text("%1.%2", var.address / 8, var.address % 8)
                                         : QString::number(var.address);
    var.length = number(o[COUNT], o[COUNT_VALUE], FAR_COUNT);
    var.station = pick(STATIONS, o[PLACE]);
    const int most = std::min(std::max(var.length, 1), 300) * 2;
    if (write)
        var.data = bytesOf(flavour % 4 == 0 ? o[SEED] % 8 : most, o[SEED]);
    return var;
}

QString shown(const RW_VAR& var)
{
    return (placeOf(var) + text(" ") + fieldsOf(var) + text(" ") + shapeOf(var)).left(SHOWN);
}

QString Session::add(const RW_VAR& var, int source, int mode)
{
    static const char* const names[] = {"read ", "write ", "once "};
    RW_VAR is = var, mine = var;
    return both(
        {text(names[source]) + shown(var) + text(" mode:%1", mode),
         source == SOURCE_WRITE ? CALL_ADDS : CALL_OTHER, mode == ADD_UNCHANGED ? 1 : 0},
        [&] {
            return source == SOURCE_READ    ? (model.reads << mine).size()
                   : source == SOURCE_WRITE ? model.addWrite(mine, mode)
                                            : model.addOnce(mine, mode);
        },
        [&] {
            return source == SOURCE_READ    ? AddListReadVar(&is)
                   : source == SOURCE_WRITE ? AddListWriteVar(&is, mode)
                                            : AddListOnceReadVar(&is, mode);
        },
        [&] { return samePlace(is, mine); });
}

QString Session::turn()
{
    const Made made = {text("turn"), CALL_TURNS, 0, watch.targetOfTurn()};
    return both(
        made, [&] { return model.turn() ? 1 : 0; },
        [] {
            const Protocol* frame = ComCommunication();
            const bool first = frame && frame == &PLC_driver.frameList.first();
            return first ? 1 : frame ? -1 : 0;
        });
}

QString Session::reply(const QByteArray* bytes, int length)
{
    QByteArray copy = bytes ? *bytes : QByteArray();
    const QString words = bytes ? hexText(copy).left(SHOWN) : text("null");
    return both(
        {text("reply length:%1 ", length) + words, CALL_ANSWERS, 0, watch.targetOfReply()},
        [&] { return model.reply(bytes, length); },
        [&] {
            const RW_VAR* served = DataCom(bytes ? &copy : nullptr, length);
            return served == &PLC_driver.retVar ? served->result : -1;
        },
        [&] { return !bytes || copy == *bytes; });
}

QString Session::answer(const Operation& o)
{
    const int flavour = o[FLAVOUR] < 128 ? 0 : o[FLAVOUR] % 20, seed = o[SEED];
    if (PLC_driver.frameList.isEmpty())
        return reply(&lastReply, lastReply.size());
    if (flavour == 18)
        return reply(nullptr, seed % 3 == 0 ? 0 : pick(EDGES, seed));
    const Protocol& head = PLC_driver.frameList.first();
    const QByteArray good = replyTo(head, QByteArray(), 0, seed);
    const QByteArray sent = replyTo(head, lastReply, flavour, seed);
    lastReply = good;
    return reply(&sent, flavour == 13 || flavour == 15 ? good.size()
                        : flavour == 14                ? pick(EDGES, seed)
                                                       : sent.size());
}

QString Session::run(const Operation& o)
{
    const int flavour = o[FLAVOUR] % 8;
    const int mode = flavour == 7 ? ADD_UNCHANGED : flavour == 6 ? 7 : ADD_CHECKED;
    // clang-format off
    switch (o[CALL] % 16) {
    case 0: return add(recordOf(o, true), SOURCE_WRITE, mode);
    case 1: return add(recordOf(o, false), SOURCE_ONCE, mode);
    case 2: return add(recordOf(o, false), SOURCE_READ, mode);
    case 3: return regroupSome(o);
    case 4: return station(o);
    case 5: return setting(o);
    case 6: return o[SEED] % 4 == 0 ? nulls(o) : get(o);
    case 7: return get(o);
    case 8: case 9: return set(o);
    case 10: return turn();
    case 11: return answer(o);
    default: break;
    }
    // clang-format on
    const QString wrong = turn();
    return wrong.isEmpty() ? answer(o) : wrong;
}

QString runAll(const QVector<Operation>& operations)
{
    Session session;
    for (const Operation& operation : operations) {
        const QString wrong = session.run(operation);
        if (!wrong.isEmpty())
            return session.told.join(text("\n")) + text("\n-> ") + wrong;
    }
    return QString();
}

QVector<Operation> shrink(QVector<Operation> operations)
{
    for (int chunk = operations.size(); chunk > 0; chunk /= 2) {
        for (int at = 0; at < operations.size();) {
            QVector<Operation> rest = operations;
            rest.remove(at, std::min(chunk, rest.size() - at));
            if (runAll(rest).isEmpty())
                at += chunk;
            else
                operations = rest;
        }
    }
    return operations;
}
