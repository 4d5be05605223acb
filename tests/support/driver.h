/// A driver at rest, a settings record, a log of the callbacks, and the runtime's side of a turn.
#ifndef KP410_TESTS_DRIVER_H
#define KP410_TESTS_DRIVER_H

#include "support/bytes.h"
#include "talmor_kp410_port.h"

#include <QStringList>

inline ComInfo settings;
inline QStringList events;

inline void onFinish(int cookie, int key, int subKey, int state)
{
    events << QString::fromLatin1("finish %1 %2 %3 %4").arg(cookie).arg(key).arg(subKey).arg(state);
}

inline void onFail(QList<RW_VAR>* vars, int key, int flag)
{
    events << QString::fromLatin1("fail %1 %2 %3").arg(vars->size()).arg(key).arg(flag);
}

/// As loaded and set up: everything empty, own node 1, stations per variable, blocks of 10.
inline void resetDriver()
{
    PLC_driver.readList.clear();
    PLC_driver.writeList.clear();
    PLC_driver.onceReadList.clear();
    PLC_driver.frameList.clear();
    PLC_driver.stationMap.clear();
    PLC_driver.retVar = RW_VAR();
    PLC_driver.currentSource = SOURCE_NONE;
    PLC_driver.writeBurst = 0;
    PLC_driver.onceReadBurst = 0;
    PLC_driver.scanCount = 0;
    PLC_driver.lastFailed = false;
    DataStorage.clear();
    events.clear();
    settings = ComInfo();
    settings.maxBlockLength = 10;
    settings.stationPerVar = 1;
    settings.ownNode = 1;
    settings.writeMode = WRITE_QUEUE;
    settings.hostCookie = 99;
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

/// Hands a reply back, whole, and returns the result code.
inline int answer(QByteArray reply)
{
    return DataCom(&reply, reply.size())->result;
}

inline int answerNothing()
{
    return answer(QByteArray());
}

/// A good acknowledgement: any 8 bytes with a good CRC.
inline int acknowledge()
{
    return answer(withCrc("01 06 00 00 00 00"));
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
