/// The driver under measurement: the built library, loaded as a runtime loads it.
#ifndef KP410_BENCH_DRIVER_H
#define KP410_BENCH_DRIVER_H

#include "talmor_kp410_port.h"

struct Driver {
    decltype(&::SetComInfo) setComInfo = nullptr;
    decltype(&::RegistCallBackFuncIntf) registCallBackFuncIntf = nullptr;
    decltype(&::ReCreatReadVarList) reCreatReadVarList = nullptr;
    decltype(&::AddListWriteVar) addListWriteVar = nullptr;
    decltype(&::ComCommunication) comCommunication = nullptr;
    decltype(&::DataCom) dataCom = nullptr;
    decltype(&::GetRegisterData) getRegisterData = nullptr;
    decltype(&::SetRegisterData) setRegisterData = nullptr;
    decltype(&::CalCRC) calCRC = nullptr;
    Communication_Protocol* state = nullptr;
    decltype(&::DataStorage) store = nullptr;
};

inline Driver driver;
inline ComInfo settings;

/// What the callbacks have told since `loadDriver`.
inline qint64 finishedWrites = 0;
inline qint64 failures = 0;

inline constexpr int NODE = 1;    ///< the runtime's own, so that what it reads is stored
inline constexpr int STATION = 1; ///< of all rows that have one station only

/// Unloads the library, if it is loaded, and loads it afresh: nothing of a row is left for the
/// next. The settings are those of a runtime that queues its writes. Ends the program without a
/// library.
void loadDriver();

/// The image of one area of STATION, created by this call if need be.
QByteArray& image(int area);

/// `bytes` that differ from their neighbours, the same in every run.
QByteArray pattern(int bytes);

/// The frame with its CRC behind it, as it comes from a controller.
QByteArray withCrc(const QByteArray& frame);

/// A good reply to a read of `data.size()` bytes with this function code.
QByteArray readReply(int functionCode, const QByteArray& data);

/// A good acknowledgement of a write of one word.
QByteArray writeReply();

#endif
