/// The linked driver at rest, and the runtime's side of a turn.
#ifndef KP410_TESTS_DRIVER_H
#define KP410_TESTS_DRIVER_H

#include "support/at_rest.h"
#include "support/bytes.h"

inline ComInfo settings;

inline void resetDriver()
{
    putToRest(PLC_driver, DataStorage, settings);
    SetComInfo(&settings);
    RegistCallBackFuncIntf(onFinish, onFail);
}

inline RW_VAR variable(int regType, int address, int length, int station = 1)
{
    RW_VAR var;
    var.nodeId = 1;
    var.regType = regType;
    var.address = address;
    var.length = length;
    var.station = station;
    return var;
}

inline RW_VAR writeOf(int regType, int address, int length, const QByteArray& data, int key = 0,
                      int station = 1)
{
    RW_VAR var = variable(regType, address, length, station);
    var.rwFlag = RW_WRITE;
    var.hostKey = key;
    var.data = data;
    return var;
}

/// The bytes that the runtime would send now; empty when there is nothing to send.
inline QByteArray request()
{
    const Protocol* frame = ComCommunication();
    return frame ? frame->frame.left(frame->frameLength) : QByteArray();
}

/// Hands a reply back, whole, by default none, and returns the result code.
inline int answer(QByteArray reply = QByteArray())
{
    return DataCom(&reply, reply.size())->result;
}

inline QByteArray stored(int station, int area)
{
    return DataStorage.value(station).value(area);
}

inline int read(int type, const char* address, int count, QByteArray& out, int station = 1)
{
    QString addressText = text(address);
    return GetRegisterData(0, type, &addressText, station, &out, count);
}

inline int write(int type, const char* address, QByteArray& value, int count, int key = 0,
                 int station = 1)
{
    QString label = text("label");
    QString addressText = text(address);
    return SetRegisterData(&label, type, &addressText, station, &value, count, key, 0);
}

#endif
