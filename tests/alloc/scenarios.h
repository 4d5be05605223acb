/// The entry points, each in the states that make it allocate.
#ifndef KP410_TESTS_ALLOC_SCENARIOS_H
#define KP410_TESTS_ALLOC_SCENARIOS_H

#include "alloc/state.h"

typedef void (*Before)();
typedef int (*Call)();

const QByteArray word = bytes("3412");

inline RW_VAR wordWrite(int address)
{
    return writeOf(MEMORY_WORD, address, 1, word, 4);
}

inline void queue(RW_VAR write)
{
    AddListWriteVar(&write, ADD_UNCHANGED);
}

inline void queueOnce(RW_VAR read, int key)
{
    read.hostKey = key;
    AddListOnceReadVar(&read, ADD_UNCHANGED);
}

inline void addCyclic()
{
    for (int address = 0; address < 40; address += 10) {
        RW_VAR var = variable(MEMORY_WORD, address, 2);
        AddListReadVar(&var);
    }
}

inline void describe(int type, const char* address, int station)
{
    VAR_DESC var{};
    var.regType = static_cast<unsigned char>(type);
    var.station = static_cast<unsigned char>(station);
    var.addressText = text(address);
    var.length = 4;
    given.descriptions << var;
}

inline void give(const char* address, const char* hex = "")
{
    given.address = text(address);
    given.value = bytes(hex);
}

/// Begins the next variable; its reply is to be taken.
inline void begin(const QByteArray& reply)
{
    ComCommunication();
    given.reply = reply;
}

inline int turn()
{
    return ComCommunication() ? 1 : 0;
}

inline int turnUnstored()
{
    const int started = turn();
    DataStorage.clear();
    return started;
}

/// The head has been found, but no frame was built for it.
inline int turnUnsent()
{
    turn();
    PLC_driver.frameList.clear();
    settings.frameCount = 0;
    return 0;
}

inline int take()
{
    return DataCom(&given.reply, given.reply.size())->result;
}

inline const QByteArray twoWords = withCrc("01 03 04 12 34 56 78");

inline int takeTwoWords()
{
    return DataCom(&given.reply, twoWords.size())->result;
}

inline int nothingCame()
{
    return DataCom(nullptr, 0)->result;
}

template <int type, int count>
inline int get()
{
    return GetRegisterData(0, type, &given.address, 1, &given.value, count);
}

template <int type, int count>
inline int put()
{
    return SetRegisterData(&given.label, type, &given.address, 1, &given.value, count, 5, 6);
}

template <int mode>
inline int add()
{
    return AddListWriteVar(&given.var, mode);
}

template <int mode>
inline int addOnce()
{
    return AddListOnceReadVar(&given.var, mode);
}

enum Refusal {
    MAY_REFUSE,
    MUST_TAKE
}; // what must be taken is refused only for the runtime's copies

/// A call that memory fails has either ended as if it had not, or has its neutral result and has
/// changed nothing, or has come out like `other`.
struct Scenario {
    const char* name;
    Before before;
    Call call;
    int neutral;
    Call other = nullptr;
    Refusal refusal = MAY_REFUSE;
};

inline const QByteArray acknowledgement = withCrc("01 06 00 00 00 00");

inline void remote()
{
    settings.remoteFraming = 1;
}

const QByteArray readOfAPair = bytes("01 03 02 00 10 B9 88");

inline void pair()
{
    queue(writeOf(MEMORY_BIT, 37, 1, bytes("01"), 7));
}

inline void queueThree(const RW_VAR& write)
{
    for (int i = 0; i < 3; ++i) {
        RW_VAR var = write;
        var.address += i * var.length;
        queue(var);
    }
}

inline void behindTwoThatAreOff()
{
    EnCommStation(3, 0);
    for (int i = 0; i < 3; ++i)
        queueOnce(variable(MEMORY_WORD, i, 2, i < 2 ? 3 : 1), i);
}

inline void otherNode()
{
    RW_VAR var = variable(MEMORY_WORD, 3, 2);
    var.nodeId = 2;
    AddListReadVar(&var);
}

inline void giveReplacing()
{
    queueThree(writeOf(MEMORY_WORD, 2, 2, bytes("01020304")));
    given.var = PLC_driver.writeList.at(2);
    given.var.data = bytes("05060708");
}

inline void giveOneShot()
{
    queueOnce(variable(MEMORY_WORD, 9, 1), 1);
    given.var = variable(MEMORY_BIT, 0, 900);
    given.var.addressText = text("7.5");
}

inline void giveDescriptions()
{
    addCyclic();
    PLC_driver.scanCount = 3;
    settings.scanDone = 1;
    describe(MEMORY_WORD, "9", 1);
    describe(MEMORY_WORD, "3", 1);
    describe(OUTPUT_BIT, "3.1", 2);
    describe(MEMORY_WORD, "50", 1);
}

inline void givePiecesAmongThree()
{
    settings.maxBlockLength = 4;
    queueThree(writeOf(MEMORY_WORD, 2, 2, bytes("01020304")));
    give("2", "0102030405060708090A");
}

template <int type, int count>
int putUnstored()
{
    const int pending = put<type, count>();
    DataStorage.clear();
    return pending;
}

const Scenario SCENARIOS[] = {
    {"station off", [] {}, [] { return EnCommStation(3, 0), 0; }, 0},
    {"station on", [] { EnCommStation(3, 0); }, [] { return EnCommStation(3, 1), 0; }, 0},

    {"turn: cyclic read", addCyclic, turn, 0},
    {"turn: one-shot read", [] { queueOnce(variable(MEMORY_WORD, 3, 2), 4); }, turn, 0},
    {"turn: words", [] { queue(wordWrite(3)); }, turn, 0, turnUnstored},
    {"turn: bits", [] { queue(writeOf(OUTPUT_BIT, 13, 3, bytes("05"))); }, turn, 0, turnUnstored},
    {"turn: special", [] { queue(writeOf(SPECIAL_BIT, 9, 1, word)); }, turn, 0, turnUnstored},
    {"turn: pair", pair, turn, 0, turnUnstored},
    {"turn: remote read", [] { remote(), addCyclic(); }, turn, 0},
    {"turn: remote write", [] { remote(), queue(wordWrite(3)); }, turn, 0, turnUnstored},
    {"turn: after stations that are off", behindTwoThatAreOff, turn, 0, turnUnsent},
    {"turn: given up", [] { queueThree(writeOf(INPUT_WORD, 0, 1, word, 8)); }, turn, 0},
    {"turn: frame pending", [] { addCyclic(), turn(); }, turn, 0},

    {"reply: data", [] { addCyclic(), begin(twoWords); }, take, 0, nothingCame, MUST_TAKE},
    {"reply: more behind it", [] { addCyclic(), begin(twoWords + "more"); }, takeTwoWords, 0,
     nothingCame, MUST_TAKE},
    {"reply: one-shot read", [] { queueOnce(variable(MEMORY_WORD, 3, 2), 4), begin(twoWords); },
     take, 0, nothingCame, MUST_TAKE},
    {"reply: other node", [] { otherNode(), begin(twoWords); }, take, 0, nullptr, MUST_TAKE},
    {"reply: first of a pair", [] { pair(), begin(readOfAPair); }, take, 0, nothingCame, MUST_TAKE},
    {"reply: first of a pair, other node", [] { settings.ownNode = 2, pair(), begin(readOfAPair); },
     take, 0, nothingCame, MUST_TAKE},
    {"reply: second of a pair", [] { pair(), begin(readOfAPair), take(), begin(acknowledgement); },
     take, 0, nullptr, MUST_TAKE},
    {"reply: write",
     [] { queueThree(wordWrite(1)), begin(acknowledgement), PLC_driver.lastFailed = true; }, take,
     0, nullptr, MUST_TAKE},
    {"reply: none, read given up",
     [] { settings.retryLimit = 0, addCyclic(), begin(QByteArray()); }, take, 0, nullptr,
     MUST_TAKE},
    {"reply: none, writes given up",
     [] { settings.retryLimit = 0, queueThree(wordWrite(1)), begin(QByteArray()); }, take, 0,
     nullptr, MUST_TAKE},

    {"add: cyclic read", addCyclic, [] { return AddListReadVar(&given.var); }, 0},
    {"add: write", [] { queue(wordWrite(1)), given.var = wordWrite(1); }, add<ADD_CHECKED>, 0},
    {"add: write that replaces one", giveReplacing, add<ADD_CHECKED>, 0},
    {"add: write, unchanged", [] { given.var = wordWrite(1); }, add<ADD_UNCHANGED>, 0},
    {"add: one-shot read in pieces", giveOneShot, addOnce<ADD_CHECKED>, 0},
    {"add: one-shot read, unchanged", giveOneShot, addOnce<ADD_UNCHANGED>, 0},
    {"add: regrouped", giveDescriptions, [] { return ReCreatReadVarList(&given.descriptions); }, 0},
    {"add: cut", [] { given.var = variable(MEMORY_WORD, 0, 45), given.pieces << given.var; },
     [] { return WhetherGroup(45, 10, &given.var, &given.pieces), 0; }, 0},
    {"add: address", [] { give("7.5"); },
     [] { return PLCAddressChangeIntef(OUTPUT_BIT, given.address); }, -1},

    {"get: bits", [] { give("7.5"); }, get<MEMORY_BIT, 9>, 0,
     [] { return given.value = QByteArray(18, '\0'), 0; }},
    {"get: words", [] { DataStorage[1][AREA_MEMORY] = word, give("0"); }, get<MEMORY_WORD, 4>, 0},
    {"get: refused", [] { give("-1"); }, get<MEMORY_WORD, 4>, 0},

    {"put: one word", [] { give("7", "3412"); }, put<MEMORY_WORD, 1>, 0},
    {"put: bytes in pieces", [] { give("7", "11002200330044"); }, put<MEMORY_BYTE, 4>, 0},
    {"put: pieces, one replaces a write", givePiecesAmongThree, put<MEMORY_WORD, 6>, 0},
    {"put: output bits", [] { give("7.1", "010001"); }, put<OUTPUT_BIT, 3>, 0},
    {"put: pieces, line failing", [] { PLC_driver.lastFailed = true, give("2", "11002200330044"); },
     put<MEMORY_BYTE, 4>, 0, putUnstored<MEMORY_BYTE, 4>},
    {"put: bits, line failing", [] { PLC_driver.lastFailed = true, give("2.1", "010101"); },
     put<OUTPUT_BIT, 3>, 0, putUnstored<OUTPUT_BIT, 3>},
    {"put: store only", [] { settings.writeMode = WRITE_STORE_ONLY, give("2.1", "010101"); },
     put<SPECIAL_BIT, 3>, 0},
};

#endif
