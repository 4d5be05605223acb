/**
 * @file talmor_kp410_port.h
 * The whole contract between an operator-panel runtime and the controller driver
 * `libtalmor_kp410_port.so.1`. A runtime is written from this file alone. C++17.
 *
 * Loading. The runtime calls dlopen and binds by plain name with dlsym, functions and objects alike
 * (`decltype(&ComCommunication)` is the type to cast to). Never link to the objects: the library
 * uses its own whatever the runtime has under the same name.
 *
 * Set-up. `SetComInfo`, `RegistCallBackFuncIntf`, then variables, then turn after turn of the loop:
 *
 *     Protocol* frame = ComCommunication();   // null: nothing to send in this turn
 *     send(frame->frame, frame->frameLength); // expect frame->replyLength bytes
 *     RW_VAR* served = DataCom(&reply, n);    // n = 0: nothing came in time, or none was expected
 *
 * Threads. The library starts none. `ComCommunication` and `DataCom` belong to one thread, the
 * communication task; the others may be called from any, unless said otherwise. The locks' order:
 * `listMutex`, then `stationMutex` or `storageMutex`, never those two together.
 *
 * Errors are values; nothing throws, and a callback may throw std::bad_alloc only. A null pointer,
 * or a call before `SetComInfo` of a function that needs the settings record, gets the neutral
 * result: a null frame, `retVar` with result 1, or 0. So does a call that memory fails: lists and
 * arguments are as before, the call can be repeated. `DataCom` takes a reply that it has no memory
 * for as none (41); a write whose value the store has no memory for is sent without it.
 *
 * Byte order. On the wire 16-bit fields are big-endian and a double word travels low-order word
 * first. In the store and in every array exchanged with the runtime, values are little-endian and
 * bits are packed least significant first.
 *
 * Native units. `readList`, and records added to it or in mode ADD_UNCHANGED, name an area, not a
 * width: `regType` is the AreaCode, `address` and `length` count bytes in the areas 3, 4 and 12 and
 * 16-bit words in 8 and 13. Descriptions, and records added in mode ADD_CHECKED, are converted.
 *
 * Ownership. The runtime keeps what it passes in; the lists hold their own copies. The settings
 * record, the callbacks and the memory areas must live until the library is unloaded.
 */
#ifndef TALMOR_KP410_PORT_H
#define TALMOR_KP410_PORT_H

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QString>

#include <atomic>
#include <cstddef>

#define TALMOR_EXPORT __attribute__((visibility("default"))) ///< on all that is exported

/// Register types: an area of the controller and an access width. The value of `regType`.
// clang-format off
enum RegisterType {
    INPUT_BIT,   OUTPUT_BIT,   MEMORY_BIT,
    INPUT_BYTE,  OUTPUT_BYTE,  MEMORY_BYTE,
    INPUT_WORD,  OUTPUT_WORD,  MEMORY_WORD,
    INPUT_DWORD, OUTPUT_DWORD, MEMORY_DWORD,
    SPECIAL_BIT, SPECIAL_WORD, REGISTER_TYPE_COUNT
};
/// Width of one element of a register type. 2 to 4 are never produced; 0 is an unknown type.
enum TypeDefinition { DEF_UNKNOWN = 0, DEF_BIT = 1, DEF_BYTE = 5, DEF_WORD = 6, DEF_DWORD = 7 };
/// Area codes, each the number of the area's native register type. Inner keys of `DataStorage`.
enum AreaCode {
    AREA_INPUT = INPUT_BYTE, AREA_OUTPUT = OUTPUT_BYTE, AREA_MEMORY = MEMORY_WORD,
    AREA_SPECIAL_BIT = SPECIAL_BIT, AREA_SPECIAL_WORD = SPECIAL_WORD
};
/// Function codes of the local framing, laid out as Modbus RTU ("Modbus Application Protocol
/// V1.1b3", modbus.org, for codes 1 to 16). 0x31 is laid out as 0x01, 0x33 as 0x03;
/// 0x35 has its own layout: station, code, address, value byte, 0xFF or 0x00, 0x00, CRC.
enum FunctionCode {
    FC_NONE = 0x00,
    FC_READ_OUTPUT_BITS = 0x01, FC_READ_INPUT_BITS = 0x02, FC_READ_MEMORY_WORDS = 0x03,
    FC_WRITE_MEMORY_WORD = 0x06, FC_WRITE_OUTPUT_BITS = 0x0F, FC_WRITE_MEMORY_WORDS = 0x10,
    FC_READ_SPECIAL_BITS = 0x31, FC_READ_SPECIAL_WORDS = 0x33, FC_WRITE_SPECIAL_BIT = 0x35
};
// clang-format on
/// One register type. Addresses and counts of the runtime are in elements: bits (written
/// "byte.bit", plain decimal for SPECIAL_BIT), bytes, words or double words; the count of a
/// double-word variable is in 16-bit words, two per double word. Element a lies at a *
/// bytesPerElement in the area's image: a bit number for the bit types, else a byte offset.
struct RegisterTypeInfo {
    const char* name;    ///< as in RegisterType
    int area;            ///< AreaCode
    int definition;      ///< TypeDefinition
    int bytesPerElement; ///< in an image; of the bit types, bits
    bool writable;       ///< the controller accepts writes of this type
};

/// Indexed by RegisterType.
// clang-format off
inline constexpr RegisterTypeInfo REGISTER_TYPES[REGISTER_TYPE_COUNT] = {
    {"INPUT_BIT",    AREA_INPUT,  DEF_BIT,   1, false}, {"OUTPUT_BIT",   AREA_OUTPUT, DEF_BIT,   1, true},
    {"MEMORY_BIT",   AREA_MEMORY, DEF_BIT,   1, true},
    {"INPUT_BYTE",   AREA_INPUT,  DEF_BYTE,  1, false}, {"OUTPUT_BYTE",  AREA_OUTPUT, DEF_BYTE,  1, true},
    {"MEMORY_BYTE",  AREA_MEMORY, DEF_BYTE,  1, true},
    {"INPUT_WORD",   AREA_INPUT,  DEF_WORD,  2, false}, {"OUTPUT_WORD",  AREA_OUTPUT, DEF_WORD,  2, true},
    {"MEMORY_WORD",  AREA_MEMORY, DEF_WORD,  2, true},
    {"INPUT_DWORD",  AREA_INPUT,  DEF_DWORD, 4, false}, {"OUTPUT_DWORD", AREA_OUTPUT, DEF_DWORD, 4, true},
    {"MEMORY_DWORD", AREA_MEMORY, DEF_DWORD, 4, true},
    {"SPECIAL_BIT",  AREA_SPECIAL_BIT, DEF_BIT, 1, true}, {"SPECIAL_WORD", AREA_SPECIAL_WORD, DEF_WORD, 2, false},
};
// clang-format on
/// Longest area image. No area of the controller exceeds 65,536 words (128 KiB); the rest is room
/// for the generous lengthening of host reads, and a bound on what a wild address can cost.
inline constexpr int MAX_IMAGE_BYTES = 16 * 1024 * 1024;
/// Longest host write or regrouped variable, in elements: 65,536 words in bits, all an area holds.
inline constexpr int MAX_ELEMENTS = 65536 * 16;
/// Entries from which on the write and the one-shot list refuse an append (mode 1 is exempt).
inline constexpr int LIST_LIMIT = 1024;

/// What the reply to the head frame turned out to be.
// clang-format off
enum Outcome {
    LOCAL_GOOD,  LOCAL_CORRUPT,  LOCAL_MISSING,  LOCAL_WRONG_LENGTH,
    REMOTE_GOOD, REMOTE_CORRUPT, REMOTE_MISSING, REMOTE_WRONG_LENGTH, OUTCOME_COUNT
};
// clang-format on
/// `result`, where it is no error of RESULTS.
enum ResultCode {
    RESULT_RETRY = 0,         ///< the reply failed, the same frame will be sent again
    RESULT_GOOD = 1,          ///< good reply of the own node; also: no frame was pending
    RESULT_GOOD_REMOTE = 100, ///< good reply of another node
    RESULT_UNKNOWN = 200      ///< no reply has judged it: unknown outcome, or given up unsent
};
/// Number of codes in one error group, one for each `hostKey` 0 to 11; other keys share the first.
inline constexpr int ERROR_GROUP_SIZE = 12;
/// One outcome and the codes `DataCom` reports for it.
struct ResultInfo {
    int code; ///< the code itself; of an error the first of its group, to which `hostKey` is added
    bool error;          ///< else good
    const char* meaning; ///< for people
};
/// Indexed by Outcome.
inline constexpr ResultInfo RESULTS[OUTCOME_COUNT] = {
    {RESULT_GOOD, false, "good"},
    {11, true, "reply corrupt: too short, wrong CRC, or not asked for"},
    {41, true, "no reply"},
    {71, true, "reply of the wrong length"},
    {RESULT_GOOD_REMOTE, false, "good (remote node)"},
    {111, true, "reply corrupt (remote node)"},
    {141, true, "no reply (remote node)"},
    {171, true, "reply of the wrong length (remote node)"},
};

// ---- Values of record fields and arguments -----------------------------------------------------
enum RwFlag { RW_READ = 0, RW_WRITE = 1 };                ///< `rwFlag`
enum RmwStep { RMW_NONE = 0, RMW_READ_STEP = -1 };        ///< `rmwStep`
enum ReplyLength { REPLY_NONE = 0, REPLY_ANY = -1 };      ///< special values of `replyLength`
enum FinishState { FINISH_DONE = 1, FINISH_FAILED = 2 };  ///< last argument of FinishCallback
enum WriteMode { WRITE_STORE_ONLY = 0, WRITE_QUEUE = 2 }; ///< `writeMode`; all but 2 is store-only
enum AddMode { ADD_CHECKED = 0, ADD_UNCHANGED = 1 };      ///< `mode`; all but 1 is checked
/// `currentSource`: the list being served.
enum Source { SOURCE_READ = 0, SOURCE_WRITE = 1, SOURCE_ONCE = 2, SOURCE_NONE = 100 };

// ---- Records (all ints 32-bit; offsets in brackets are those of a 32-bit target) ----------------
/// One variable request. The driver keeps copies; the runtime keeps the record it passes.
struct RW_VAR {
    int hostKey = 0;        ///< [0] first key of the runtime, handed to both callbacks
    int hostSubKey = 0;     ///< [4] second key, handed to FinishCallback
    int rwFlag = RW_READ;   ///< [8] RwFlag; a write must say so, or its reply is stored
    int remoteMode = 0;     ///< [12] `remoteFraming` when a host write built the record
    int nodeId = 0;         ///< [16] `ownNode`: good reads are stored; another: never stored
    int result = 0;         ///< [20] ResultCode; meaningful in the record `DataCom` returns
    QString label;          ///< [24] carried, never interpreted
    QString addressText;    ///< [28] start address as text: "12.3" for bits, "100" otherwise
    int regType = 0;        ///< [32] RegisterType
    int address = 0;        ///< [36] start address, in elements of the type or native units
    int station = 0;        ///< [40] station number of the controller
    int length = 0;         ///< [44] element count, in length units of the type
    int rmwStep = RMW_NONE; ///< [48] RmwStep; 0 in a record of the runtime
    int auxParam = 0;       ///< [52] carried into the remote header
    QByteArray data;        ///< [56] value bytes
};
/// One request frame with the shape of its reply. Owned by the driver.
struct Protocol {
    QByteArray frame;        ///< [0] request bytes, ready to send
    int frameLength = 0;     ///< [4] bytes in `frame`
    int replyLength = 0;     ///< [8] bytes expected; 0: no reply, -1: any number
    int replyDataOffset = 0; ///< [12] index of the first data byte in the reply
    int replyDataLength = 0; ///< [16] data bytes in the reply
    RW_VAR var;              ///< [20] the variable, or the piece of it, that the frame serves
    int reserved1 = 0, reserved2 = 0, reserved3 = 0; ///< [80], [84], [88] always 0
};
/// The runtime's settings record; it may go on behind these fields. The driver touches no byte but
/// the named ones, and only reads those that are not said to be its own.
struct ComInfo {
    int hostArea0[4];   ///< [0] the runtime's own
    int maxBlockLength; ///< [16] longest read (native units) or write (bytes); 0: no limit
    int hostArea20;     ///< [20] the runtime's own
    int defaultStation; ///< [24] station of every variable while `stationPerVar` is 0
    int retryLimit;     ///< [28] failed replies tolerated before a variable is given up
    int retryCount;     ///< [32] failed replies of all variables; 0 past the limit; the driver's
    int stationPerVar;  ///< [36] nonzero: each variable keeps its own station
    int hostArea40;     ///< [40] the runtime's own, set to 0 by `SetComInfo`
    int frameCount;     ///< [44] frames of the current request; the driver's
    int framesDone;     ///< [48] of these, answered well; the driver's
    int hostArea52;     ///< [52] the runtime's own, set to 0 by `SetComInfo`
    int remoteFraming;  ///< [56] nonzero: requests use the remote framing
    int ownNode;        ///< [60] the runtime's node number, compared with `nodeId`
    int writeMode;      ///< [64] WriteMode
    int scanDone;       ///< [68] 1: nothing left to read, or a full pass done; the driver's
    int hostCookie;     ///< [72] first argument of FinishCallback
};
/// The runtime's description of one cyclically read variable, for `ReCreatReadVarList`.
struct VAR_DESC {
    unsigned char hostByte0;    ///< [0] not read
    unsigned char regType;      ///< [1] RegisterType
    unsigned char station;      ///< [2] used while `stationPerVar` is nonzero
    unsigned char hostBytes[5]; ///< [3] not read
    QString addressText;        ///< [8] start address as text
    QString label;              ///< [12] carried into the list entry
    int length;                 ///< [16] element count, in length units of the type
};
/// Element of `extendList`; carries no behaviour.
struct EXTENDVAR {
    int reserved1 = 0, reserved2 = 0, reserved3 = 0; ///< [0], [4], [8] unused
    QByteArray data;                                 ///< [12] unused
};

// ---- Callbacks: run with `listMutex` held: call no function that takes it, keep no copy of a list
/// A write or one-shot read has ended: served, or given up, then FailCallback follows. Not called
/// for one-shot reads of another node, nor for a write that a newer one has replaced in the list.
/// Of entries with the same two keys only the last reports success; when one is given up, all of
/// them (of its station, while `stationPerVar` is nonzero) leave the list with this one report.
typedef void (*FinishCallback)(int hostCookie, int hostKey, int hostSubKey, int state);
/// A variable was given up; a cyclic read stays in its list. `vars` is an empty list, gone after
/// the call, `flag` always 1.
typedef void (*FailCallback)(QList<RW_VAR>* vars, int hostKey, int flag);

// ---- State -----------------------------------------------------------------------------------
/// The driver's state; exactly one object exists, `PLC_driver`. Member order is part of the
/// interface. `listMutex` guards the variable lists and the scheduling state, `storageMutex` guards
/// `DataStorage`, `stationMutex` guards `stationMap`; all three are non-recursive. `frameList`
/// belongs to the communication task and has no lock.
struct Communication_Protocol {
    ComInfo* comInfo = nullptr;  ///< not owned
    QList<RW_VAR> readList;      ///< cyclic reads, served round-robin, in native units
    QList<RW_VAR> writeList;     ///< pending writes, first in first out
    QList<RW_VAR> onceReadList;  ///< pending one-shot reads, first in first out
    QList<RW_VAR> spareList;     ///< unused
    QList<Protocol> frameList;   ///< frames of the variable being served, sent head first
    QList<EXTENDVAR> extendList; ///< unused
    FinishCallback finishCallback = nullptr;      ///< may be null
    FailCallback failCallback = nullptr;          ///< may be null
    QMutex listMutex, storageMutex, stationMutex; ///< taken in the order of the file's top
    QMap<int, int> stationMap;           ///< stations switched off: the key counts, the value is 0
    RW_VAR retVar;                       ///< the record whose address `DataCom` returns
    int currentSource = SOURCE_NONE;     ///< Source of the variable being served
    int writeBurst = 0;                  ///< writes started since the last cyclic read
    int onceReadBurst = 0;               ///< one-shot reads started since the last cyclic read
    int scanCount = 0;                   ///< variables completed since the last full pass
    std::atomic<bool> lastFailed{false}; ///< the last reply failed; read by any thread
};

extern "C" {
/// Station, then area code, to the area's image: byte k of a byte area at k, word w of a word area
/// at 2w, low byte first. Hold `storageMutex` while touching it.
extern TALMOR_EXPORT QMap<int, QMap<int, QByteArray>> DataStorage;
extern TALMOR_EXPORT Communication_Protocol PLC_driver; ///< the one state object
extern TALMOR_EXPORT void* LB;  ///< first area of `FlashLocalRegister`; never dereferenced here
extern TALMOR_EXPORT void* LW;  ///< second area
extern TALMOR_EXPORT void* RWI; ///< third area

// ---- Set-up ------------------------------------------------------------------------------------
/// Takes the settings record and clears its `hostArea52` and `hostArea40`; null takes the record
/// away again. No lock: call it while no frame is pending and no other call runs.
TALMOR_EXPORT void SetComInfo(ComInfo* info);
/// Takes the two callbacks, either of which may be null. No lock.
TALMOR_EXPORT void RegistCallBackFuncIntf(FinishCallback finish, FailCallback fail);
/// Takes the addresses of three memory areas of the runtime, kept in `LB`, `LW`, `RWI`. No lock.
TALMOR_EXPORT void FlashLocalRegister(void* lb, void* lw, void* rwi);
TALMOR_EXPORT int QueryFinishFlag(); ///< @return always 1

/// Switches a station off (`enable` 0) or on (1); a negative station switches all on; other values
/// change nothing. Entries of a station that is off wait in their lists, behind others; frames that
/// are built are still sent. Takes `stationMutex`.
TALMOR_EXPORT void EnCommStation(int station, int enable);
TALMOR_EXPORT void EnableEthernet(int station, int enable); ///< the same as `EnCommStation`

// ---- The communication loop (one thread) -------------------------------------------------------
/// Picks the next request: writes first, then one-shot reads, then cyclic reads, at most five of
/// the first two each between two cyclic reads. A written value is in the store from then on,
/// unless the line is failing. @return the frame to send, the same until `DataCom` has removed it
/// and valid until then; null when there is none in this turn (`scanDone` tells whether nothing was
/// left to do). A write or one-shot read that no frame can be built for is given up here, with
/// RESULT_UNKNOWN in `retVar`: both callbacks may run inside this call. Takes all three locks.
TALMOR_EXPORT Protocol* ComCommunication();

/// Takes the reply to the frame that `ComCommunication` returned last; a good reply to a read of
/// the own node goes into the store. Discard late replies yourself: this looks at length and CRC.
/// @param reply the bytes received; only the first `length` are the reply. Null with a `length` of
///        0 is an empty reply, null with any other length is answered with 1 and ignored.
/// @param length bytes received; 0 when nothing came in time, or none was expected
/// @return `retVar`, always the same address, valid until the next call of either: `result` is a
///         ResultCode or an error of RESULTS, the rest names the variable finished last (the head
///         of the list, should it have been rebuilt meanwhile), without its `data`
/// Takes `listMutex`, and `storageMutex` while it stores; runs the callbacks.
TALMOR_EXPORT RW_VAR* DataCom(QByteArray* reply, int length);

// ---- Registration ------------------------------------------------------------------------------
/// Appends a copy of a record in native units to `readList`. Takes no lock: only while no other
/// thread uses the list. @return entries in `readList`
TALMOR_EXPORT int AddListReadVar(RW_VAR* var);

/// Queues a write in the units of the wire: bits of the output area packed with a bit address,
/// words and double words of the memory area with a word address and count, single bits and bytes
/// of the memory area and special bits one to a record. In mode ADD_CHECKED it replaces a pending
/// write (not the first) of the same station, type, address and length, and is dropped when the
/// list is full. Takes `listMutex`. @return entries in `writeList`
TALMOR_EXPORT int AddListWriteVar(RW_VAR* var, int mode);

/// Queues a one-shot read. In mode ADD_CHECKED the address is parsed from `addressText`, the
/// station chosen, `rmwStep` and `auxParam` cleared, the record converted to native units and cut
/// into pieces of at most `maxBlockLength` (a negative limit within the length gives none);
/// the caller's record ends as the last piece. Pieces that are queued already under the same keys,
/// and those that a full list cannot take, are dropped. Takes `listMutex`.
/// @return entries in `onceReadList`; 0 for a bad address or station 0
TALMOR_EXPORT int AddListOnceReadVar(RW_VAR* var, int mode);

/// Rebuilds `readList`, dropping what was in it, from descriptions: converted to native units,
/// sorted by station, area and address, merged over gaps of less than a block, cut to
/// `maxBlockLength`. An entry has the keys 0 and -1, and the texts of the variable that opened its
/// block. Variables with a bad or wrapping address, station 0, a negative length or more than
/// MAX_ELEMENTS elements are left out. Restarts the scan (`scanDone` 0) unless `vars` is empty.
/// Takes `listMutex`. @return entries in `readList`
TALMOR_EXPORT int ReCreatReadVarList(QList<VAR_DESC>* vars);

/// Cuts `var` into pieces of at most `maxLength` that cover `length` and appends them to `out`;
/// `var` ends as the last piece. Without a limit (below 1), or when `length` is within it, `var` is
/// appended as it stands. Nothing for a negative `length` or one that MAX_ELEMENTS forbids to cut.
/// No lock.
TALMOR_EXPORT void WhetherGroup(int length, int maxLength, RW_VAR* var, QList<RW_VAR>* out);

/// @return the element address of `text` in the notation of `type`; negative when it has none or
/// memory fails. Text that is not a decimal integer counts as 0. Pure.
TALMOR_EXPORT int PLCAddressChangeIntef(int type, QString text);

// ---- Data access -------------------------------------------------------------------------------
/// Copies values out of the store; never causes a request. Data that never arrived reads as 0.
/// @param unused,type,addressText ignored; RegisterType; start address as text
/// @param station key of the store, used as given: pass `defaultStation` while `stationPerVar` is 0
/// @param out bits: `count` bytes 0 or 1; bytes: `count` bytes, then `count` zero bytes; words:
///        2 * `count` bytes; double words: 4 * ((`count` + 1) / 2) bytes; unknown type: empty
/// @param count elements; 16-bit words for double words
/// @return 1; 0 for an address that is bad or beyond MAX_IMAGE_BYTES (`out` then holds 2 * `count`
///         zero bytes, or nothing: beyond MAX_IMAGE_BYTES, without memory). Takes `storageMutex`.
TALMOR_EXPORT int GetRegisterData(int unused, int type, QString* addressText, int station,
                                  QByteArray* out, int count);

/// Writes values: queues them for the controller (`writeMode` WRITE_QUEUE) or puts them into the
/// store only (any other mode; every type, and `value` is left as it is).
/// @param label,hostKey,hostSubKey carried with the write; the keys are handed to the callbacks
/// @param type,addressText RegisterType, and start address as text
/// @param station used while `stationPerVar` is nonzero, else `defaultStation` is
/// @param value bits: a byte each (OUTPUT_BIT: bit 0, others: any nonzero is 1); bytes: a 16-bit
///        slot each, low byte first; words: 2 bytes each; double words: 4 bytes each. Missing bytes
///        are 0. When queued, cut and padded in place to what was taken from it.
/// @param count elements; 16-bit words for double words; at most MAX_ELEMENTS
/// @return entries in `writeList` after the last piece; 1 for store-only; 0 when refused (bad
///         address, type not writable, beyond MAX_IMAGE_BYTES, nothing to write, no memory for all
///         its pieces). A full list drops some silently. Takes `listMutex`, `storageMutex` in turn.
TALMOR_EXPORT int SetRegisterData(QString* label, int type, QString* addressText, int station,
                                  QByteArray* value, int count, int hostKey, int hostSubKey);

// ---- Utilities: pure, any thread ---------------------------------------------------------------
/// Appends "yyyy.MM.dd.hh:mm:ss.z:message" to "debug.log" in the working directory, which the first
/// line of a process starts afresh. Qt 4's message handler form; `message` is Latin-1. No lock: it
/// does not serialise concurrent calls. A file that cannot be opened loses the line.
TALMOR_EXPORT void customMessageHandler(QtMsgType type, const char* message);
/// @return sum of `length` bytes modulo 65536: the remote framing's checksum in its low 8 bits
TALMOR_EXPORT unsigned short CalSUM(const unsigned char* bytes, unsigned short length);
/// @return CRC-16, reflected polynomial 0xA001, initial value 0xFFFF, no final XOR, sent low byte
/// first ("MODBUS over Serial Line V1.02", 6.2.2, modbus.org); 0xFFFF of no bytes
TALMOR_EXPORT unsigned short CalCRC(const unsigned char* bytes, unsigned short length);
/// @return 1 to 256: the inverted low byte of the sum, plus 1 without a wrap
TALMOR_EXPORT int CalLRC(const unsigned char* bytes, unsigned short length);
/// @return the bytes XORed; at least one is read, whatever the `length`; 0 for null
TALMOR_EXPORT unsigned short CalXOR(const unsigned char* bytes, unsigned short length);
/// @return `value` + '0' up to 9, else `value` + 0x37 ('A' for 10); unchecked
TALMOR_EXPORT int DigitalToASCII(int value);
/// @return inverse of DigitalToASCII; ':' to '?' give 10 to 15, '@' and all below '0' give 0
TALMOR_EXPORT int ASCIIToDigital(int character);
} // extern "C"

// ---- Layout: part of the interface -------------------------------------------------------------
static_assert(sizeof(int) == 4, "every int of the records is 32 bits wide");
static_assert(sizeof(QString) == sizeof(void*), "a string member is one shared handle");
static_assert(sizeof(QByteArray) == sizeof(void*), "a byte array member is one shared handle");
static_assert(sizeof(std::atomic<bool>) == 1, "lastFailed is one byte");

static_assert(offsetof(ComInfo, maxBlockLength) == 16 && offsetof(ComInfo, hostCookie) == 72 &&
                  sizeof(ComInfo) == 76,
              "ComInfo has changed its layout");
#if __SIZEOF_POINTER__ == 4
static_assert(sizeof(RW_VAR) == 60 && sizeof(Protocol) == 92, "a record has changed its size");
static_assert(sizeof(EXTENDVAR) == 16 && sizeof(VAR_DESC) == 20, "a record has changed its size");
#endif
#endif
