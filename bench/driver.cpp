#include "driver.h"

#include <dlfcn.h>

namespace
{
void* library = nullptr;

template <typename Pointer>
void bind(Pointer& pointer, const char* name)
{
    pointer = reinterpret_cast<Pointer>(dlsym(library, name));
    if (!pointer)
        qFatal("the library has no %s", name);
}

void onFinish(int /*cookie*/, int /*key*/, int /*subKey*/, int state)
{
    finishedWrites += state == FINISH_DONE ? 1 : 0;
}

void onFail(QList<RW_VAR>* /*vars*/, int /*key*/, int /*flag*/)
{
    ++failures;
}
} // namespace

void loadDriver()
{
    if (library)
        dlclose(library);
    library = dlopen(KP410_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        qFatal("%s", dlerror());
    bind(driver.setComInfo, "SetComInfo");
    bind(driver.registCallBackFuncIntf, "RegistCallBackFuncIntf");
    bind(driver.reCreatReadVarList, "ReCreatReadVarList");
    bind(driver.addListWriteVar, "AddListWriteVar");
    bind(driver.comCommunication, "ComCommunication");
    bind(driver.dataCom, "DataCom");
    bind(driver.getRegisterData, "GetRegisterData");
    bind(driver.setRegisterData, "SetRegisterData");
    bind(driver.calCRC, "CalCRC");
    bind(driver.state, "PLC_driver");
    bind(driver.store, "DataStorage");

    constexpr int noCut = 240; // bytes of a write: all that a frame holds, more than any row writes
    settings = ComInfo();
    settings.maxBlockLength = noCut;
    settings.defaultStation = STATION;
    settings.stationPerVar = 1;
    settings.ownNode = NODE;
    settings.writeMode = WRITE_QUEUE;
    finishedWrites = 0;
    failures = 0;
    driver.setComInfo(&settings);
    driver.registCallBackFuncIntf(onFinish, onFail);
}

QByteArray& image(int area)
{
    return (*driver.store)[STATION][area];
}

QByteArray pattern(int bytes)
{
    constexpr int step = 37; // odd: 256 bytes until it repeats
    QByteArray values(bytes, '\0');
    for (int i = 0; i < bytes; ++i)
        values[i] = static_cast<char>(step * (i + 1));
    return values;
}

QByteArray withCrc(const QByteArray& frame)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(frame.constData());
    const unsigned crc = driver.calCRC(bytes, static_cast<unsigned short>(frame.size()));
    return frame + static_cast<char>(crc & 0xFF) + static_cast<char>(crc >> 8);
}

QByteArray readReply(int functionCode, const QByteArray& data)
{
    QByteArray head;
    head.append(char{STATION});
    head.append(static_cast<char>(functionCode));
    head.append(static_cast<char>(data.size()));
    return withCrc(head + data);
}

QByteArray writeReply()
{
    return withCrc(QByteArray::fromHex("010600640000"));
}
