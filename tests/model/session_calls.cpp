#include "model/session.h"

#include <algorithm>

namespace
{
constexpr int BLOCK_LIMIT = 1000;    ///< of a regrouping
constexpr qint64 PIECE_LIMIT = 1200; ///< of a host write: more than a list takes
} // namespace

QString Session::set(const Operation& o)
{
    RW_VAR var = recordOf(o, true);
    // The model walks its list for every piece.
    const qint64 limit = widthOf(var.regType) <= 8     ? PIECE_LIMIT
                         : settings.maxBlockLength < 1 ? MAX_ELEMENTS + 1
                                                       : settings.maxBlockLength * PIECE_LIMIT / 2;
    if (settings.writeMode == WRITE_QUEUE && var.length <= MAX_ELEMENTS)
        var.length = static_cast<int>(std::min<qint64>(var.length, limit));
    RW_VAR mine = var;
    const bool shows = settings.writeMode != WRITE_QUEUE || PLC_driver.lastFailed;
    const int station = settings.stationPerVar != 0 ? var.station : settings.defaultStation;
    const int address = modelAddress(var.regType, var.addressText);
    const Target target = hostTarget(var.regType, address, station, var.length);
    return both(
        {text("put ") + shown(var), CALL_ADDS, 0, shows ? target : Target()},
        [&] { return model.set(mine); },
        [&] {
            return SetRegisterData(&var.label, var.regType, &var.addressText, var.station,
                                   &var.data, var.length, var.hostKey, var.hostSubKey);
        },
        [&] { return var.data == mine.data; });
}

QString Session::get(const Operation& o)
{
    RW_VAR var = recordOf(o, true), mine = var;
    return both(
        {text("get ") + shown(var)}, [&] { return model.get(mine); },
        [&] {
            return GetRegisterData(0, var.regType, &var.addressText, var.station, &var.data,
                                   var.length);
        },
        [&] { return var.data == mine.data; });
}

QString Session::regroup(QList<VAR_DESC> vars)
{
    QString words = text("regroup");
    for (const VAR_DESC& desc : vars)
        words += text(" %1:%2+%3@%4", desc.regType, desc.addressText, desc.length, desc.station);
    return both(
        {words}, [&] { return model.regroup(vars); }, [&] { return ReCreatReadVarList(&vars); });
}

/// Up to seven variables that lie close together; some far, some bad.
QString Session::regroupSome(const Operation& o)
{
    QList<VAR_DESC> vars;
    qint64 blocks = 0;
    for (int i = 0; i < o[SEED] % 8; ++i) {
        Operation one = o;
        for (std::size_t which = TYPE; which <= PLACE; ++which)
            one.bytes[which] = static_cast<unsigned char>((o.bytes[which] + 1) * (i * 37 + 1));
        const RW_VAR var = recordOf(one, false);
        VAR_DESC desc = VAR_DESC();
        desc.regType = static_cast<unsigned char>(var.regType);
        desc.station = static_cast<unsigned char>(var.station);
        desc.addressText = var.addressText;
        desc.label = var.label;
        desc.length = var.length;
        blocks += std::max(desc.length, 0) / std::max(settings.maxBlockLength, 1);
        if (blocks > BLOCK_LIMIT)
            desc.length = 1;
        vars << desc;
    }
    return regroup(vars);
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
    const auto& row = table[static_cast<std::size_t>(o[KEYS]) % std::size(table)];
    const int value = row.values[o[SEED] % 6];
    told << text("set %1 = %2", text(row.name), value);
    settings.*row.field = model.settings.*row.field = value;
    return QString();
}

QString Session::station(const Operation& o)
{
    const int number = recordOf(o, false).station;
    const int enable = o[SEED] % 8 == 7 ? 7 : o[SEED] % 2;
    const auto enabling = o[FLAVOUR] % 2 == 0 ? EnCommStation : EnableEthernet;
    return both(
        {text("station %1 %2", number, enable)}, [&] { return model.station(number, enable), 0; },
        [&] { return enabling(number, enable), 0; });
}

/// Null pointers change nothing; without the record or the callbacks the driver goes on.
QString Session::nulls(const Operation& o)
{
    QString some = text("1");
    QByteArray value;
    RW_VAR var;
    QList<RW_VAR> out;
    const int mode = o[FLAVOUR] % 2;
    // Seldom, and only until the next call of this kind.
    model.reports = o[SEED] % 8 == 0 || o[FLAVOUR] % 8 > 1;
    model.attached = o[SEED] % 8 == 4 || o[FLAVOUR] % 8 > 1;
    RegistCallBackFuncIntf(model.reports ? onFinish : nullptr, model.reports ? onFail : nullptr);
    SetComInfo(model.attached ? &settings : nullptr);
    const auto called = [&] {
        WhetherGroup(1, 1, nullptr, &out);
        WhetherGroup(1, 1, &var, nullptr);
        customMessageHandler(QtDebugMsg, nullptr);
        return AddListReadVar(nullptr) + AddListWriteVar(nullptr, mode) +
               AddListOnceReadVar(nullptr, mode) + ReCreatReadVarList(nullptr) +
               GetRegisterData(0, MEMORY_WORD, nullptr, 1, &value, 0) +
               GetRegisterData(0, MEMORY_WORD, &some, 1, nullptr, 1) +
               SetRegisterData(nullptr, MEMORY_WORD, &some, 1, &value, 1, 0, 0) +
               SetRegisterData(&some, MEMORY_WORD, nullptr, 1, &value, 1, 0, 0) +
               SetRegisterData(&some, MEMORY_WORD, &some, 1, nullptr, 1, 0, 0) + out.size() +
               CalSUM(nullptr, 5) + CalXOR(nullptr, 5) + (CalCRC(nullptr, 5) ^ 0xFFFF);
    };
    return both(
        {text("nulls, reports:%1 attached:%2", int{model.reports}, int{model.attached})},
        [] { return 0; }, called);
}
