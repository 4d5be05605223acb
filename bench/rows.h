/// The table: what is measured, what it may cost, and what it is compared with.
#ifndef KP410_BENCH_ROWS_H
#define KP410_BENCH_ROWS_H

#include "work.h"

#include <string_view>

enum Measure { OF_TIME, OF_INSTRUCTIONS };

/// What a row is compared with. Both are measured in one run; a ratio of 0 is no limit.
struct Peer {
    const char* row = ""; ///< name of the other row; empty: none
    Measure measure = OF_TIME;
    double atMost = 0;
};

struct Row {
    const char* name;
    const Work* work;
    int size;
    int maxInstructions = 0; ///< an operation; 0: no limit
    Peer peer = {};
    int parts = 1; ///< an operation handles so many; what it costs for one of them is compared
    bool threads = false; ///< more than one: judged by the clock alone
};

constexpr Peer inTime(const char* row, double atMost = 0)
{
    return {row, OF_TIME, atMost};
}

constexpr Peer growthFrom(const char* row, double atMost = 0)
{
    return {row, OF_INSTRUCTIONS, atMost};
}

constexpr Row regroup(const char* name, const Work& work, int variables, int maxInstructions,
                      const char* smaller)
{
    return {name, &work, variables, maxInstructions, growthFrom(smaller, 1.0), variables};
}

// clang-format off
inline constexpr Row ROWS[] = {
    {"read turn, 2 words", &READ_WORDS, 2, 1300, inTime("libmodbus in memory, read 2 words", 1.35)},
    {"read turn, 32 words", &READ_WORDS, 32, 1750, inTime("libmodbus in memory, read 32 words", 0.8)},
    {"read turn, 120 words", &READ_WORDS, 120, 3000, inTime("libmodbus in memory, read 120 words", 0.55)},
    {"read turn, 60 bytes of bits", &READ_BITS, 60, 0, inTime("libmodbus in memory, read 480 bits")},
    {"write of a word, with its turn", &WRITE_WORD, 1, 2500, inTime("libmodbus in memory, write a word")},
    {"write of a memory bit, with its two turns", &WRITE_BIT, 1, 4000, inTime("libmodbus in memory, read and write a word")},

    {"GetRegisterData, 1 word", &GET_WORDS, 1, 280},
    {"GetRegisterData, 100 words", &GET_WORDS, 100, 290},
    {"GetRegisterData, 100 bits", &GET_BITS, 100, 650},
    {"GetRegisterData, 50 double words", &GET_DWORDS, 50, 290},
    {"GetRegisterData, first touch of word 30,000", &GET_FIRST_TOUCH, 30000},
    {"SetRegisterData queued, 1 word", &SET_QUEUED, 1, 850},
    {"SetRegisterData queued, 100 words", &SET_QUEUED, 100, 1700},
    {"SetRegisterData store-only, 1 word", &SET_STORE_ONLY, 1, 350},
    {"SetRegisterData store-only, 100 words", &SET_STORE_ONLY, 100, 370},

    {"regroup 100 in one area", &REGROUP_ONE_AREA, 100, 0, {}, 100},
    regroup("regroup 1,000 in one area", REGROUP_ONE_AREA, 1000, 0, "regroup 100 in one area"),
    regroup("regroup 5,000 in one area", REGROUP_ONE_AREA, 5000, 2500000, "regroup 100 in one area"),
    regroup("regroup 20,000 in one area", REGROUP_ONE_AREA, 20000, 0, "regroup 100 in one area"),
    {"regroup 100 over 80 groups", &REGROUP_GROUPS, 100, 0, {}, 100},
    regroup("regroup 1,000 over 80 groups", REGROUP_GROUPS, 1000, 0, "regroup 100 over 80 groups"),
    regroup("regroup 5,000 over 80 groups", REGROUP_GROUPS, 5000, 3500000, "regroup 100 over 80 groups"),
    regroup("regroup 20,000 over 80 groups", REGROUP_GROUPS, 20000, 0, "regroup 100 over 80 groups"),

    {"CalCRC, 8 bytes", &CRC, 8, 0, inTime("256-entry table, 8 bytes", 0.62)},
    {"CalCRC, 64 bytes", &CRC, 64, 0, inTime("256-entry table, 64 bytes", 0.31)},
    {"CalCRC, 256 bytes", &CRC, 256, 0, inTime("256-entry table, 256 bytes", 0.27)},
    {"CalCRC, 4,096 bytes", &CRC, 4096, 0, inTime("256-entry table, 4,096 bytes", 0.26)},

    {"read turn, 10 list entries", &READ_LIST, 10},
    {"read turn, 100 list entries", &READ_LIST, 100, 0, growthFrom("read turn, 10 list entries", 1.02)},
    {"read turn, 1,000 list entries", &READ_LIST, 1000, 0, growthFrom("read turn, 10 list entries", 1.02)},
    {"read turn, 10,000 list entries", &READ_LIST, 10000, 0, growthFrom("read turn, 10 list entries", 1.02)},
    {"read turn, 1 station", &READ_STATIONS, 1},
    {"read turn, 16 stations", &READ_STATIONS, 16, 0, growthFrom("read turn, 1 station", 1.2)},
    {"read turn, 247 stations", &READ_STATIONS, 247, 0, growthFrom("read turn, 1 station", 1.2)},
    {"read turn, image word 0", &READ_AT, 0},
    {"read turn, image word 60,000", &READ_AT, 60000, 0, growthFrom("read turn, image word 0", 1.02)},
    {"read turn beside a reading thread", &READ_CONTENDED, 2, 0, inTime("read turn, 2 words"), 1, true},
    {"write turn, 0 others pending", &WRITE_BEFORE, 0},
    {"write turn, 100 others pending", &WRITE_BEFORE, 100, 0, growthFrom("write turn, 0 others pending", 1.03)},
    {"write turn, 1,000 others pending", &WRITE_BEFORE, 1000, 0, growthFrom("write turn, 0 others pending", 1.03)},
    {"queue a write, 0 pending", &QUEUE_BEHIND, 0},
    {"queue a write, 100 pending", &QUEUE_BEHIND, 100, 0, growthFrom("queue a write, 0 pending")},
    {"queue a write, 1,000 pending", &QUEUE_BEHIND, 1000, 6000, growthFrom("queue a write, 0 pending")},
    {"queue four pieces, 0 pending", &QUEUE_FOUR_BEHIND, 0},
    {"queue four pieces, 1,000 pending", &QUEUE_FOUR_BEHIND, 1000, 0, growthFrom("queue four pieces, 0 pending")},
    {"merge a write, 2 pending", &MERGE_INTO, 2},
    {"merge a write, 100 pending", &MERGE_INTO, 100, 0, growthFrom("merge a write, 2 pending")},
    {"merge a write, 1,000 pending", &MERGE_INTO, 1000, 6000, growthFrom("merge a write, 2 pending")},

    {"socket pair, read turn of 2 words", &READ_SOCKET, 2, 0, inTime("socket pair, bare calls, 2 words", 1.15)},
    {"socket pair, read turn of 32 words", &READ_SOCKET, 32, 0, inTime("socket pair, bare calls, 32 words", 1.15)},
    {"socket pair, read turn of 120 words", &READ_SOCKET, 120, 0, inTime("socket pair, bare calls, 120 words", 1.15)},
    {"socket pair, write of a word with its turn", &WRITE_WORD_SOCKET, 1, 0, inTime("socket pair, bare calls, write")},
    {"socket pair, libmodbus, read 2 words", &MODBUS_READ_SOCKET, 2, 0, inTime("socket pair, bare calls, 2 words")},
    {"socket pair, libmodbus, read 32 words", &MODBUS_READ_SOCKET, 32, 0, inTime("socket pair, bare calls, 32 words")},
    {"socket pair, libmodbus, read 120 words", &MODBUS_READ_SOCKET, 120, 0, inTime("socket pair, bare calls, 120 words")},
    {"socket pair, libmodbus, write a word", &MODBUS_WRITE_WORD_SOCKET, 1, 0, inTime("socket pair, bare calls, write")},
    {"socket pair, bare calls, 2 words", &BARE_READ_SOCKET, 2},
    {"socket pair, bare calls, 32 words", &BARE_READ_SOCKET, 32},
    {"socket pair, bare calls, 120 words", &BARE_READ_SOCKET, 120},
    {"socket pair, bare calls, write", &BARE_WRITE_SOCKET, 1},

    {"libmodbus in memory, read 2 words", &MODBUS_READ, 2},
    {"libmodbus in memory, read 32 words", &MODBUS_READ, 32},
    {"libmodbus in memory, read 120 words", &MODBUS_READ, 120},
    {"libmodbus in memory, read 480 bits", &MODBUS_READ_BITS, 60},
    {"libmodbus in memory, write a word", &MODBUS_WRITE_WORD, 1},
    {"libmodbus in memory, read and write a word", &MODBUS_WRITE_BIT, 1},
    {"256-entry table, 8 bytes", &CRC_TABLE, 8},
    {"256-entry table, 64 bytes", &CRC_TABLE, 64},
    {"256-entry table, 256 bytes", &CRC_TABLE, 256},
    {"256-entry table, 4,096 bytes", &CRC_TABLE, 4096},
};
// clang-format on

/// Null for a name that the table does not have.
constexpr const Row* findRow(std::string_view name)
{
    for (const Row& row : ROWS) {
        if (name == row.name)
            return &row;
    }
    return nullptr;
}

constexpr bool peersAreRows()
{
    for (const Row& row : ROWS) {
        if (*row.peer.row != '\0' && !findRow(row.peer.row))
            return false;
    }
    return true;
}
static_assert(peersAreRows(), "a row is compared with one that the table does not have");

#endif
