// The driver's two callbacks. They run with a lock of the driver held, so they only record; the
// loop takes the records after the call that ran them.
#pragma once

#include "talmor_kp410_port.h"

#include <QVector>

struct CallbackRecord {
    bool finish = false; ///< the finish callback, else the fail callback
    int hostKey = 0;
    int hostSubKey = 0; ///< of the finish callback
    int state = 0;      ///< FinishState, or the flag of the fail callback
};

void recordFinish(int hostCookie, int hostKey, int hostSubKey, int state);
void recordFail(QList<RW_VAR>* vars, int hostKey, int flag);
QVector<CallbackRecord> takeCallbacks();
