#include "check/guarded.h"
#include "check/locks.h"
#include "driver/Communication_Protocol.h"

void SetComInfo(ComInfo* info)
{
    if (info)
        info->hostArea52 = 0;
    PLC_driver.comInfo = info;
    if (info)
        info->hostArea40 = 0;
}

void RegistCallBackFuncIntf(FinishCallback finish, FailCallback fail)
{
    PLC_driver.finishCallback = finish;
    PLC_driver.failCallback = fail;
}

void FlashLocalRegister(void* lb, void* lw, void* rwi)
{
    LB = lb;
    LW = lw;
    RWI = rwi;
}

int QueryFinishFlag()
{
    return 1;
}

void EnCommStation(int station, int enable)
{
    constexpr int off = 0;
    constexpr int on = 1;
    guarded([=] {
        Locker lock(&PLC_driver.stationMutex);
        if (station < 0)
            PLC_driver.stationMap.clear();
        else if (enable == off)
            PLC_driver.stationMap.insert(station, 0);
        else if (enable == on)
            PLC_driver.stationMap.remove(station);
    });
}

void EnableEthernet(int station, int enable)
{
    EnCommStation(station, enable);
}

bool Ethernetcontains(int station)
{
    Locker lock(&PLC_driver.stationMutex);
    return PLC_driver.stationMap.contains(station);
}
