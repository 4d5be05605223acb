#include "model/session.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int MOST = std::numeric_limits<int>::max();
constexpr int CUT_LIMIT = 1000;      ///< pieces, and blocks of a regrouping
constexpr qint64 PIECE_LIMIT = 1200; ///< of a host write: more than a list takes
} // namespace

QString Session::set(const Operation& o)
{
    const RW_VAR var = recordOf(o, true);
    // The model walks its list for every piece.
    const qint64 limit = widthOf(var.regType) <= 8     ? PIECE_LIMIT
                         : settings.maxBlockLength < 1 ? MAX_ELEMENTS + 1
                                                       : settings.maxBlockLength * PIECE_LIMIT / 2;
    const bool queues = settings.writeMode == WRITE_QUEUE && var.length <= MAX_ELEMENTS;
    const int count = queues ? static_cast<int>(std::min<qint64>(var.length, limit)) : var.length;
    QString label = var.label, address = var.addressText;
    QByteArray value = var.data, mine = value;
    tell("put", shownCall(var.regType, address, count) +
                    QString::fromLatin1(" station:%1 keys:%2,%3 value:%4")
                        .arg(var.station)
                        .arg(var.hostKey)
                        .arg(var.hostSubKey)
                        .arg(QLatin1String(value.left(20).toHex())));
    watch.begin(CALL_ADDS);
    const bool shows = settings.writeMode != WRITE_QUEUE || PLC_driver.lastFailed;
    const int station = settings.stationPerVar != 0 ? var.station : settings.defaultStation;
    const Target target =
        hostTarget(var.regType, PLCAddressChangeIntef(var.regType, address), station, count);
    const int expected = model.set(label, var.regType, address, var.station, mine, count,
                                   var.hostKey, var.hostSubKey);
    const int is = SetRegisterData(&label, var.regType, &address, var.station, &value, count,
                                   var.hostKey, var.hostSubKey);
    const QString wrong = judge(shows ? target : Target(), is, expected);
    return wrong.isEmpty() && value != mine ? text("the runtime's array differs") : wrong;
}

QString Session::get(const Operation& o)
{
    const RW_VAR var = recordOf(o, false);
    QString address = var.addressText;
    QByteArray out("old"), mine;
    tell("get", shownCall(var.regType, address, var.length) +
                    QString::fromLatin1(" station:%1").arg(var.station));
    watch.begin(CALL_OTHER);
    const int expected = model.get(var.regType, address, var.station, mine, var.length);
    const int is = GetRegisterData(0, var.regType, &address, var.station, &out, var.length);
    const QString wrong = judge(Target(), is, expected);
    return wrong.isEmpty() && out != mine ? text("the values differ") : wrong;
}

/// Up to seven variables that lie close together; some far, some bad.
QString Session::regroup(const Operation& o)
{
    QList<VAR_DESC> vars;
    QStringList words;
    qint64 blocks = 0;
    for (int i = 0; i < o[Operation::SEED] % 8; ++i) {
        Operation one = o;
        for (int which = Operation::TYPE; which <= Operation::PLACE; ++which) {
            unsigned char& byte = one.bytes[static_cast<std::size_t>(which)];
            byte = static_cast<unsigned char>((byte + 1) * (i * 37 + 1));
        }
        const RW_VAR var = recordOf(one, false);
        VAR_DESC desc = VAR_DESC();
        desc.regType = static_cast<unsigned char>(var.regType);
        desc.station = static_cast<unsigned char>(var.station);
        desc.addressText = var.addressText;
        desc.label = var.label;
        desc.length = var.length;
        blocks += std::max(desc.length, 0) / std::max(settings.maxBlockLength, 1);
        if (blocks > CUT_LIMIT)
            desc.length = 1;
        words << shownCall(desc.regType, desc.addressText, desc.length) +
                     QString::fromLatin1(" station:%1").arg(desc.station);
        vars << desc;
    }
    tell("regroup", words.join(text(", ")));
    watch.begin(CALL_OTHER);
    const int expected = model.regroup(vars);
    return judge(Target(), ReCreatReadVarList(&vars), expected);
}

QString Session::cut(const Operation& o)
{
    RW_VAR var = recordOf(o, false), mine = var;
    const int length = number(o[Operation::COUNT], o[Operation::COUNT_VALUE], MAX_ELEMENTS);
    int limit = number(o[Operation::PLACE], o[Operation::SEED], MAX_ELEMENTS);
    if (limit > 0 && length / limit > CUT_LIMIT)
        limit = length / CUT_LIMIT + 1;
    tell("cut", QString::fromLatin1("length:%1 limit:%2").arg(length).arg(limit));
    watch.begin(CALL_OTHER);
    QList<RW_VAR> pieces, expected;
    if (length >= 0 && (length <= limit || limit < 1))
        expected.append(mine);
    else if (length <= MAX_ELEMENTS)
        expected = model.cut(length, limit, mine);
    WhetherGroup(length, limit, &var, &pieces);
    expected.append(mine);
    pieces.append(var);
    const QString wrong = judge(Target(), pieces.size(), expected.size());
    for (int i = 0; wrong.isEmpty() && i < pieces.size(); ++i) {
        if (pieces.at(i).address != expected.at(i).address ||
            pieces.at(i).length != expected.at(i).length)
            return QString::fromLatin1("piece %1 differs").arg(i);
    }
    return wrong;
}

QString Session::setting(const Operation& o)
{
    static constexpr struct {
        const char* name;
        int ComInfo::*field;
        int values[6];
    } table[] = {{"maxBlockLength", &ComInfo::maxBlockLength, {10, 1, 2, 60, 5, 255}},
                 {"maxBlockLength", &ComInfo::maxBlockLength, {0, -1, -10, INT_MIN, INT_MAX, 3}},
                 {"defaultStation", &ComInfo::defaultStation, {1, 0, 2, 1, 257, -1}},
                 {"retryLimit", &ComInfo::retryLimit, {0, 0, 1, 2, 0, -1}},
                 {"stationPerVar", &ComInfo::stationPerVar, {1, 0, 1, 1, -1, 1}},
                 {"remoteFraming", &ComInfo::remoteFraming, {0, 1, 0, 0, 1, 0}},
                 {"ownNode", &ComInfo::ownNode, {1, 2, 1, 1, 0, 1}},
                 {"writeMode", &ComInfo::writeMode, {2, 0, 2, 2, 1, 2}},
                 {"hostCookie", &ComInfo::hostCookie, {99, 0, -1, 7, 8, 9}}};
    const auto& row = table[static_cast<std::size_t>(o[Operation::KEYS]) % std::size(table)];
    const int value = row.values[o[Operation::SEED] % 6];
    tell("set", QString::fromLatin1("%1 = %2").arg(QLatin1String(row.name)).arg(value));
    settings.*row.field = model.settings.*row.field = value;
    return QString();
}

QString Session::station(const Operation& o)
{
    const int number = stationIn(o),
              enable = o[Operation::SEED] % 8 == 7 ? 7 : o[Operation::SEED] % 2;
    tell("station", QString::fromLatin1("%1 %2").arg(number).arg(enable));
    watch.begin(CALL_OTHER);
    model.station(number, enable);
    o[Operation::FLAVOUR] % 2 == 0 ? EnCommStation(number, enable) : EnableEthernet(number, enable);
    return judge(Target(), 0, 0);
}

/// Null pointers change nothing; without the record or the callbacks the driver goes on.
QString Session::nulls(const Operation& o)
{
    QString some = text("1");
    QByteArray value;
    RW_VAR var;
    QList<RW_VAR> out;
    switch (o[Operation::SEED] % 8) {
    case 0:
        tell("callbacks", QString());
        model.reports = !model.reports;
        RegistCallBackFuncIntf(model.reports ? onFinish : nullptr,
                               model.reports ? onFail : nullptr);
        return QString();
    case 1:
        tell("record", QString());
        model.attached = !model.attached;
        SetComInfo(model.attached ? &settings : nullptr);
        return QString();
    default:
        break;
    }
    tell("nulls", QString());
    watch.begin(CALL_OTHER);
    int sum = AddListReadVar(nullptr) + AddListWriteVar(nullptr, o[Operation::FLAVOUR] % 2) +
              AddListOnceReadVar(nullptr, o[Operation::FLAVOUR] % 2) + ReCreatReadVarList(nullptr) +
              GetRegisterData(0, MEMORY_WORD, nullptr, 1, &value, 0) +
              GetRegisterData(0, MEMORY_WORD, &some, 1, nullptr, 1) +
              SetRegisterData(nullptr, MEMORY_WORD, &some, 1, &value, 1, 0, 0) +
              SetRegisterData(&some, MEMORY_WORD, nullptr, 1, &value, 1, 0, 0) +
              SetRegisterData(&some, MEMORY_WORD, &some, 1, nullptr, 1, 0, 0);
    WhetherGroup(1, 1, nullptr, &out);
    WhetherGroup(1, 1, &var, nullptr);
    customMessageHandler(QtDebugMsg, nullptr);
    sum += out.size() + CalSUM(nullptr, 5) + CalXOR(nullptr, 5);
    return judge(Target(), sum, 0);
}

QString Session::add(const Operation& o, int source)
{
    const RW_VAR var = recordOf(o, source == SOURCE_WRITE);
    return source == SOURCE_WRITE  ? addWrite(var, ADD_UNCHANGED)
           : source == SOURCE_ONCE ? addOnce(var, ADD_UNCHANGED)
                                   : addRead(var);
}

/// What keeps no state, on bytes of any number.
QString Session::utilities(const Operation& o)
{
    const QByteArray bytes = bytesOf(o[Operation::SEED] * o[Operation::COUNT], o[Operation::KEYS]);
    const auto* in = reinterpret_cast<const unsigned char*>(bytes.constData());
    const auto size = static_cast<unsigned short>(bytes.size());
    unsigned sum = 0, every = bytes.isEmpty() ? 0 : in[0];
    for (int i = 0; i < size; ++i) {
        sum += in[i];
        every ^= i > 0 ? in[i] : 0U;
    }
    tell("utilities", QString::number(bytes.size()));
    watch.begin(CALL_OTHER);
    FlashLocalRegister(&model, &watch, nullptr);
    const QByteArray crc = crcBytes(bytes.left(size));
    const int is = CalSUM(in, size),
              digit = number(o[Operation::ADDRESS], o[Operation::SEED], MOST);
    const bool good = CalXOR(in, size) == every &&
                      CalLRC(in, size) == static_cast<int>(~sum & 0xFF) + 1 &&
                      CalCRC(in, size) == (crc.at(0) & 0xFF) + (crc.at(1) & 0xFF) * 256 &&
                      (digit < 0 || digit > 15 || ASCIIToDigital(DigitalToASCII(digit)) == digit) &&
                      QueryFinishFlag() == 1 && LB == &model && LW == &watch && !RWI;
    const QString wrong = judge(Target(), is, static_cast<int>(sum & 0xFFFF));
    return wrong.isEmpty() && !good ? text("a check value or pointer differs") : wrong;
}

QString Session::run(const Operation& o)
{
    const int flavour = o[Operation::FLAVOUR];
    const int mode = flavour % 8 == 7 ? ADD_UNCHANGED : flavour % 8 == 6 ? 7 : ADD_CHECKED;
    const int seed = o[Operation::SEED];
    // clang-format off
    switch (o[Operation::CALL] % 16) {
    case 0: return addWrite(recordOf(o, true), mode);
    case 1: return addOnce(recordOf(o, false), mode);
    case 2: return addRead(recordOf(o, false));
    case 3: return regroup(o);
    case 4: return station(o);
    case 5: return setting(o);
    case 6: return seed % 4 == 0 ? nulls(o) : seed % 4 == 1 ? utilities(o) : cut(o);
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
            return session.told.join(QLatin1Char('\n')) + text("\n-> ") + wrong;
    }
    return QString();
}

QVector<Operation> shrink(QVector<Operation> operations)
{
    for (int chunk = std::max(operations.size() / 2, 1); chunk >= 1;) {
        bool shorter = false;
        for (int at = 0; at < operations.size();) {
            QVector<Operation> rest = operations;
            rest.remove(at, std::min(chunk, rest.size() - at));
            const bool fails = !runAll(rest).isEmpty();
            if (fails)
                operations = rest;
            else
                at += chunk;
            shorter |= fails;
        }
        if (!shorter || chunk > 1)
            chunk /= 2;
    }
    return operations;
}
