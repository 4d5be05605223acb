#include "model/session.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int LEAST = std::numeric_limits<int>::min();
constexpr int MOST = std::numeric_limits<int>::max();
constexpr int EDGES[] = {-1,
                         0,
                         LEAST,
                         MOST,
                         65535,
                         65536,
                         65537,
                         8191,
                         8192,
                         32768,
                         MAX_ELEMENTS,
                         MAX_ELEMENTS + 1,
                         -65536,
                         1 << 30,
                         MOST - 1,
                         MAX_IMAGE_BYTES,
                         MAX_IMAGE_BYTES / 4 - 8,
                         MAX_IMAGE_BYTES - 1,
                         MAX_IMAGE_BYTES / 2,
                         MAX_IMAGE_BYTES + 1};
constexpr int ODD_TYPES[] = {-1, 14, 15, LEAST, MOST, 255};
constexpr int STATIONS[] = {1, 2, 1, 0, 1, 2, -1, 257};
const char* const ODD_TEXTS[] = {
    "",   ".",    "12",  "1.2.3", "abc", "5.",   ".7",          "x.3",           "2147483648",
    "-5", "-1.3", "1.9", " 7",    "+3",  "0x10", "268435455.7", "99999999999.9", "2147483647"};
constexpr int FAR_CALLS = 2;      ///< calls of a session that may move megabytes
constexpr int FAR_COUNT = 300;    ///< elements from which on a call is one of them
constexpr int REPLY_LIMIT = 4096; ///< longer replies are not given

template <typename T, std::size_t N>
T pick(const T (&table)[N], int index)
{
    return table[static_cast<std::size_t>(index) % N];
}

QString shown(const RW_VAR& var)
{
    return shownCall(var.regType, var.addressText, var.length) +
           QString::fromLatin1(" address:%1 station:%2 keys:%3,%4 flag:%5 node:%6 rmw:%7 data:%8")
               .arg(var.address)
               .arg(var.station)
               .arg(var.hostKey)
               .arg(var.hostSubKey)
               .arg(var.rwFlag)
               .arg(var.nodeId)
               .arg(var.rmwStep)
               .arg(QLatin1String(var.data.left(20).toHex()));
}
} // namespace

QByteArray bytesOf(int size, int seed)
{
    QByteArray bytes(std::max(size, 0), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(seed >> 2);
        seed = (seed * 77 + 29) & 0xFFFF;
    }
    return bytes;
}

QString shownCall(int type, const QString& address, int count)
{
    return QString::fromLatin1("type:%1 '%2' count:%3").arg(type).arg(address).arg(count);
}

QVector<Operation> operationsOf(const unsigned char* bytes, std::size_t size)
{
    QVector<Operation> operations;
    for (; size >= Operation::SIZE; size -= Operation::SIZE, bytes += Operation::SIZE) {
        Operation operation;
        std::copy(bytes, bytes + Operation::SIZE, operation.bytes.begin());
        operations.append(operation);
    }
    return operations;
}

Session::Session() : watch(PLC_driver, DataStorage)
{
    resetDriver();
    model.settings = settings;
}

void Session::tell(const char* name, const QString& arguments)
{
    told << QLatin1String(name) + QLatin1Char(' ') + arguments;
}

QString Session::judge(const Target& target, int is, int expected)
{
    const QStringList happened = events;
    QString wrong = watch.end(target);
    if (wrong.isEmpty() && is != expected)
        wrong = QString::fromLatin1("result %1, the model says %2").arg(is).arg(expected);
    if (wrong.isEmpty() && happened != model.events)
        wrong = QString::fromLatin1("reports '%1', the model says '%2'")
                    .arg(happened.join(QLatin1Char(';')), model.events.join(QLatin1Char(';')));
    model.events.clear();
    return wrong.isEmpty() ? model.difference(PLC_driver, DataStorage, settings) : wrong;
}

/// Mostly small, sometimes two bytes, sometimes a limit. Those above `most` are rationed.
int Session::number(int selector, int value, int most)
{
    const int small = value % 24;
    const int drawn = selector < 160   ? small
                      : selector < 208 ? (selector - 160) * 256 + value
                                       : pick(EDGES, value);
    const bool rejected = drawn >= MAX_IMAGE_BYTES;
    if (drawn > most && !rejected && ++farCalls > FAR_CALLS)
        return small;
    return drawn;
}

QString Session::textOf(const Operation& o, int type)
{
    if (o[Operation::FLAVOUR] % 16 == 15)
        return text(pick(ODD_TEXTS, o[Operation::ADDRESS_VALUE]));
    const int address = number(o[Operation::ADDRESS], o[Operation::ADDRESS_VALUE], 65537);
    return type < INPUT_BIT || type > MEMORY_BIT
               ? QString::number(address)
               : QString::fromLatin1("%1.%2").arg(address / 8).arg(address % 8);
}

namespace
{
int typeOf(const Operation& o)
{
    const int byte = o[Operation::TYPE];
    return byte < 240 ? byte % REGISTER_TYPE_COUNT : pick(ODD_TYPES, byte);
}

} // namespace

int stationIn(const Operation& o)
{
    return pick(STATIONS, o[Operation::PLACE]);
}

RW_VAR Session::recordOf(const Operation& o, bool write)
{
    RW_VAR var;
    const int keys = o[Operation::KEYS], flavour = o[Operation::FLAVOUR];
    var.hostKey = keys % 4 == 3 ? keys - 100 : keys % 4;
    var.hostSubKey = keys / 4 % 2;
    var.nodeId = keys / 8 % 4 == 3 ? 2 : 1;
    var.rwFlag = keys / 32 == 7 ? flavour % 4 : write ? RW_WRITE : RW_READ;
    var.rmwStep = keys / 32 == 6 ? -1 : 0;
    var.auxParam = keys / 32 == 5 ? flavour * -65793 : 0;
    var.label = QString::number(++serial);
    var.regType = typeOf(o);
    var.addressText = textOf(o, var.regType);
    var.address = number(o[Operation::ADDRESS], o[Operation::ADDRESS_VALUE], 65537);
    var.length = number(o[Operation::COUNT], o[Operation::COUNT_VALUE], FAR_COUNT);
    var.station = stationIn(o);
    if (write)
        var.data = bytesOf(flavour % 4 == 0 ? o[Operation::SEED] % 8
                                            : std::min(std::max(var.length, 1), 300) * 2,
                           o[Operation::SEED]);
    return var;
}

QString Session::addWrite(RW_VAR var, int mode)
{
    tell("write", shown(var) + QString::fromLatin1(" mode:%1").arg(mode));
    watch.begin(CALL_ADDS, mode == ADD_UNCHANGED ? 1 : 0);
    const int expected = model.addWrite(var, mode);
    return judge(Target(), AddListWriteVar(&var, mode), expected);
}

QString Session::addOnce(RW_VAR var, int mode)
{
    tell("once", shown(var) + QString::fromLatin1(" mode:%1").arg(mode));
    watch.begin(CALL_OTHER, mode == ADD_UNCHANGED ? 1 : 0);
    RW_VAR mine = var;
    const int expected = model.addOnce(mine, mode);
    const int is = AddListOnceReadVar(&var, mode);
    const bool same = var.regType == mine.regType && var.address == mine.address &&
                      var.length == mine.length && var.station == mine.station;
    const QString wrong = judge(Target(), is, expected);
    return wrong.isEmpty() && !same ? text("the caller's record differs") : wrong;
}

QString Session::addRead(RW_VAR var)
{
    tell("read", shown(var));
    watch.begin(CALL_OTHER);
    const int expected = model.addRead(var);
    return judge(Target(), AddListReadVar(&var), expected);
}

QString Session::turn()
{
    tell("turn", QString());
    watch.begin(CALL_TURNS);
    const Target target = watch.targetOfTurn();
    const bool expected = model.turn();
    const Protocol* frame = ComCommunication();
    if (frame && frame != &PLC_driver.frameList.first())
        return text("the frame is not the first one");
    return judge(target, frame ? 1 : 0, expected ? 1 : 0);
}

QString Session::reply(const QByteArray* bytes, int length)
{
    QByteArray copy = bytes ? *bytes : QByteArray();
    tell("reply", QString::fromLatin1("length:%1 %2%3")
                      .arg(length)
                      .arg(QLatin1String(bytes ? "" : "null"))
                      .arg(QLatin1String(copy.left(40).toHex())));
    watch.begin(CALL_ANSWERS);
    const Target target = watch.targetOfReply();
    const int expected = model.reply(bytes, length);
    const RW_VAR* served = DataCom(bytes ? &copy : nullptr, length);
    if (served != &PLC_driver.retVar || (bytes && copy != *bytes))
        return text("another record, or the reply is changed");
    return judge(target, served->result, expected);
}

QByteArray Session::goodReply(const Protocol& frame, int seed)
{
    if (frame.replyLength < 2 || frame.replyLength > REPLY_LIMIT)
        return QByteArray();
    QByteArray body = frame.frame.left(2) + QByteArray(1, static_cast<char>(frame.replyDataLength));
    for (int i = 3; i < frame.replyLength - 2; ++i)
        body.append(static_cast<char>(seed = (seed * 77 + 29) & 0x7FFF));
    return withCrc(body.left(frame.replyLength - 2));
}

/// Good replies, and all the bad ones that lines and controllers are known for.
QString Session::answer(const Operation& o)
{
    const int flavour = o[Operation::FLAVOUR], seed = o[Operation::SEED];
    if (PLC_driver.frameList.isEmpty())
        return reply(&lastReply, lastReply.size());
    const Protocol& head = PLC_driver.frameList.first();
    const QByteArray good = goodReply(head, seed);
    const QByteArray body = good.left(good.size() - 2);
    QByteArray sent = good;
    int length = -2; // that of what is sent
    // clang-format off
    switch (flavour < 128 ? 0 : flavour % 20) {
    case 1: sent.clear(); break;
    case 2: sent = good.left(1); break;
    case 3: sent = bytes("FF FF"); break; // the CRC of nothing
    case 4: sent = withCrc(body + bytesOf(seed, 1)); break;
    case 5: sent = withCrc(body.left(2) + bytesOf(1, seed) + body.mid(3)); break;
    case 6: sent = withCrc(body.left(body.size() - 1)); break;
    case 7: sent = withCrc(bytes("01 83 02")); break;
    case 8: sent = bytes("01 83 02"); break;
    case 9: sent = withCrc(bytesOf(2, seed) + body.mid(2)); break; // another station, function
    case 10: sent = head.frame + good; break; // the echo
    case 11: sent = bytesOf(seed % 9, seed) + good; break;
    case 12: sent = body + bytesOf(2, seed); break;
    case 13: sent = good.left(seed % 8); length = good.size(); break;
    case 14: length = pick(EDGES, seed); break;
    case 15: sent = good + bytesOf(seed, 3); length = good.size(); break;
    case 16: sent = lastReply; break;
    case 17: sent = bytesOf(300, seed); break;
    case 18: return reply(nullptr, seed % 3 == 0 ? 0 : pick(EDGES, seed));
    case 19: sent = bytesOf(head.replyLength > REPLY_LIMIT ? 0 : head.replyLength, seed); break;
    default: break;
    }
    // clang-format on
    lastReply = good;
    return reply(&sent, length == -2 ? sent.size() : length);
}
