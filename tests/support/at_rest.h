/// A driver as a runtime has set it up and never used it, and the record of its callbacks.
#ifndef KP410_TESTS_AT_REST_H
#define KP410_TESTS_AT_REST_H

#include "support/bytes.h"

#include "talmor_kp410_port.h"

#include <QStringList>

inline QStringList events;

inline QString finishEvent(int cookie, int key, int subKey, int state)
{
    return text("finish %1 %2 %3 %4", cookie, key, subKey, state);
}

inline QString failEvent(int size, int key, int flag)
{
    return text("fail %1 %2 %3", size, key, flag);
}

inline void onFinish(int cookie, int key, int subKey, int state)
{
    events << finishEvent(cookie, key, subKey, state);
}

inline void onFail(QList<RW_VAR>* vars, int key, int flag)
{
    events << failEvent(vars->size(), key, flag);
}

/// Everything empty, own node 1, stations per variable, blocks of 10.
inline void putToRest(Communication_Protocol& driver, QMap<int, QMap<int, QByteArray>>& store,
                      ComInfo& settings)
{
    for (QList<RW_VAR>* entries : {&driver.readList, &driver.writeList, &driver.onceReadList})
        entries->clear();
    driver.frameList.clear();
    driver.stationMap.clear();
    driver.retVar = RW_VAR();
    driver.currentSource = SOURCE_NONE;
    driver.writeBurst = driver.onceReadBurst = driver.scanCount = 0;
    driver.lastFailed = false;
    store.clear();
    events.clear();
    settings = ComInfo();
    settings.maxBlockLength = 10;
    settings.stationPerVar = settings.ownNode = 1;
    settings.writeMode = WRITE_QUEUE;
    settings.hostCookie = 99;
}

#endif
