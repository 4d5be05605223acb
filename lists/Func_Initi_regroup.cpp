#include "check/Func_Check.h"
#include "check/address.h"
#include "check/guarded.h"
#include "check/locks.h"
#include "lists/grouping.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int LAST_ADDRESS = std::numeric_limits<int>::max();

/// True when an address stays what it is in native units. One that wraps round the end of the
/// addresses would merge with variables at their start.
bool convertsWithoutWrapping(int type, int address)
{
    const AreaInfo* area = findArea(getPlcReg(type));
    const qint64 unitsPerElement = getPlcStorageAddress(type) / (area ? area->bytesPerUnit : 1);
    return unitsPerElement * address <= LAST_ADDRESS;
}

int stationOf(const VarSource& source, const VAR_DESC& desc)
{
    return source.settings.stationPerVar != 0 ? int{desc.station} : source.settings.defaultStation;
}

/// Where variables go in the order of the cyclic list. Either each has a station of its own, of one
/// byte, or all have the same one.
quint64 placeOf(const VarSource& source, const VAR_DESC& desc, const RW_VAR& var)
{
    const quint64 station = source.settings.stationPerVar != 0 ? desc.station : 0;
    const quint64 group = station << TYPE_BITS | static_cast<unsigned char>(var.regType);
    return group << ADDRESS_BITS | static_cast<unsigned>(var.address);
}

/// The variables that can be read cyclically, in the order of their descriptions.
GroupedVars variablesOf(const VarSource& source)
{
    GroupedVars vars;
    vars.reserve(static_cast<std::size_t>(source.descs.size()));
    RW_VAR var; // without texts
    for (int i = 0; i < source.descs.size(); ++i) {
        const VAR_DESC& desc = source.descs.at(i);
        var.regType = desc.regType;
        var.address = StringAddressToInt(desc.regType, desc.addressText);
        var.length = desc.length;
        if (stationOf(source, desc) == 0 || var.address < 0 || var.length < 0 ||
            var.length > MAX_ELEMENTS || !convertsWithoutWrapping(var.regType, var.address))
            continue;
        updateRwVar(&var);
        if (qint64{var.address} + var.length <= LAST_ADDRESS)
            vars.push_back({placeOf(source, desc, var), var.length, i});
    }
    return vars;
}

void appendBlocks(const VarSource& source)
{
    GroupedVars vars = variablesOf(source);
    Bubble_Sort(&vars);
    const GroupedVar* const end = vars.data() + vars.size();
    for (const GroupedVar* group = vars.data(); group != end;) {
        const auto inOther = [group](const GroupedVar& var) {
            return groupOf(var) != groupOf(*group);
        };
        const GroupedVar* const next = std::find_if(group, end, inOther);
        BitVarReCreat(source, group, next, source.settings.maxBlockLength);
        group = next;
    }
}
} // namespace

RW_VAR recordOf(const VarSource& source, const GroupedVar& grouped)
{
    const VAR_DESC& desc = source.descs.at(grouped.desc);
    RW_VAR var;
    var.hostSubKey = -1;
    var.remoteMode = source.settings.remoteFraming;
    var.nodeId = source.settings.ownNode;
    var.label = desc.label;
    var.addressText = desc.addressText;
    var.regType = getPlcReg(desc.regType);
    var.address = addressOf(grouped);
    var.station = stationOf(source, desc);
    var.length = grouped.length;
    return var;
}

int ReCreatReadVarList(QList<VAR_DESC>* vars)
{
    if (!vars)
        return 0;
    ComInfo* settings = vars->isEmpty() ? nullptr : PLC_driver.comInfo;
    if (!settings && !vars->isEmpty())
        return 0;
    return guarded(0, [=] {
        Locker lock(&PLC_driver.listMutex);
        Refilling<RW_VAR> refilling(PLC_driver.readList);
        if (settings) {
            appendBlocks({*vars, *settings});
            PLC_driver.scanCount = 0;
            settings->scanDone = 0;
        }
        refilling.keep();
        return PLC_driver.readList.size();
    });
}
