/// What the rows of the table do. Each kind of work is set up on a driver that has just been
/// loaded.
#ifndef KP410_BENCH_WORK_H
#define KP410_BENCH_WORK_H

#include <QtGlobal>

struct Work {
    void (*setUp)(int size);
    void (*operation)(); ///< what is measured
    void (*restore)();   ///< puts back what the next operation needs; null: nothing
    /// Ends the program, by `expect`, when `operations` operations have not done their work.
    void (*check)(int size, qint64 operations);
};

/// Ends the program unless `actual` is `expected`.
void expect(const char* what, qint64 actual, qint64 expected);

// reads.cpp: a turn of the loop with a good reply ready. The size is in brackets.
extern const Work READ_WORDS;     ///< [words of the reply] ten list entries
extern const Work READ_BITS;      ///< [bytes of the reply] the same, of the input area
extern const Work READ_LIST;      ///< [list entries] two words each
extern const Work READ_STATIONS;  ///< [stations] two words; 247 entries, dealt out to the stations
extern const Work READ_AT;        ///< [first word] two words; ten entries from there on
extern const Work READ_CONTENDED; ///< [words] beside a thread that reads the store all the time
extern const Work READ_SOCKET;    ///< [words] the bytes go over a socket pair

// writes.cpp: SetRegisterData and all turns until the write is finished.
extern const Work WRITE_WORD;        ///< one turn
extern const Work WRITE_BIT;         ///< of the memory area: two turns
extern const Work WRITE_WORD_SOCKET; ///< one turn, the bytes go over a socket pair

// host_calls.cpp: one call each.
extern const Work GET_WORDS;       ///< [words]
extern const Work GET_BITS;        ///< [bits]
extern const Work GET_DWORDS;      ///< [double words]
extern const Work GET_FIRST_TOUCH; ///< [word] of an image that ends before it
extern const Work SET_QUEUED;      ///< [words] the only pending write
extern const Work SET_STORE_ONLY;  ///< [words]

// pending.cpp: beside writes that wait. The size is their number.
extern const Work QUEUE_BEHIND;      ///< SetRegisterData of a new target
extern const Work QUEUE_FOUR_BEHIND; ///< the same of four bytes: a piece each
extern const Work MERGE_INTO;        ///< SetRegisterData of the target that waits last
extern const Work WRITE_BEFORE;      ///< the turn of the first write, all others behind it

// regroup.cpp: ReCreatReadVarList. The size is the number of variables.
extern const Work REGROUP_ONE_AREA;
extern const Work REGROUP_GROUPS; ///< over 16 stations and 5 areas

// crc.cpp: the size is in bytes.
extern const Work CRC;
extern const Work CRC_TABLE; ///< peer: one lookup in 256 entries per byte

// peers.cpp: what others do for the same exchange.
extern const Work MODBUS_READ;              ///< [words] libmodbus, its transport in memory
extern const Work MODBUS_READ_BITS;         ///< [bytes] the same, bits
extern const Work MODBUS_WRITE_WORD;        ///< the same, one word written
extern const Work MODBUS_WRITE_BIT;         ///< the same, one word read and written
extern const Work MODBUS_READ_SOCKET;       ///< [words] libmodbus over the socket pair
extern const Work MODBUS_WRITE_WORD_SOCKET; ///< the same, one word written
extern const Work BARE_READ_SOCKET;         ///< [words] the system calls alone
extern const Work BARE_WRITE_SOCKET;

#endif
