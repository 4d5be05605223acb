#include "driver.h"
#include "work.h"

namespace
{
constexpr int BLOCK = 61; // native units: room for so many variables and the gaps between them
constexpr int STEP = 2;   // native units from one variable to the next
constexpr int PER_BLOCK = (BLOCK + STEP - 1) / STEP;
constexpr int PER_UNIT_BITS = 8; // element addresses of a native unit of special bits
constexpr int SCATTER = 7919;    // a prime, and so an order without a pattern for any size here
constexpr int STATIONS = 16;
constexpr int TYPES[] = {INPUT_BYTE, OUTPUT_BYTE, MEMORY_WORD, SPECIAL_BIT, SPECIAL_WORD};
constexpr int AREA_COUNT = sizeof TYPES / sizeof *TYPES;

QList<VAR_DESC> variables;
qint64 returned = 0;

void describe(int type, int station, int unit)
{
    VAR_DESC var{};
    var.regType = static_cast<unsigned char>(type);
    var.station = static_cast<unsigned char>(station);
    var.addressText = QString::number(type == SPECIAL_BIT ? unit * PER_UNIT_BITS : unit);
    var.label = QStringLiteral("tag");
    var.length = 1;
    variables << var;
}

void begin()
{
    settings.maxBlockLength = BLOCK;
    variables.clear();
    returned = 0;
}

int scattered(int i, int count)
{
    return static_cast<int>(qint64{SCATTER} * i % count);
}

void setUpOneArea(int count)
{
    begin();
    for (int i = 0; i < count; ++i)
        describe(MEMORY_WORD, STATION, STEP * scattered(i, count));
}

constexpr int GROUPS = STATIONS * AREA_COUNT;

void setUpGroups(int count)
{
    begin();
    for (int i = 0; i < count; ++i) {
        const int number = scattered(i, count);
        const int group = number % GROUPS;
        describe(TYPES[group / STATIONS], STATION + group % STATIONS, STEP * (number / GROUPS));
    }
}

void regroup()
{
    returned += driver.reCreatReadVarList(&variables);
}

void check(int count, int groups, qint64 operations)
{
    int blocks = 0;
    for (int group = 0; group < groups; ++group) {
        const int ofGroup = count / groups + (group < count % groups ? 1 : 0);
        blocks += (ofGroup + PER_BLOCK - 1) / PER_BLOCK;
    }
    expect("entries returned", returned, operations * blocks);
    expect("list entries", driver.state->readList.size(), blocks);
    int units = 0;
    for (const RW_VAR& block : driver.state->readList)
        units += block.length;
    expect("units read", units, STEP * count - blocks); // no gap behind a block's last variable
}

void checkOneArea(int count, qint64 operations)
{
    check(count, 1, operations);
}

void checkGroups(int count, qint64 operations)
{
    check(count, GROUPS, operations);
}
} // namespace

const Work REGROUP_ONE_AREA = {setUpOneArea, regroup, nullptr, checkOneArea};
const Work REGROUP_GROUPS = {setUpGroups, regroup, nullptr, checkGroups};
