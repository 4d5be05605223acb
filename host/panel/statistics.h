// Counters of a run.
#pragma once

#include "callbacks.h"
#include "timing.h"

#include <QMap>
#include <QString>

struct TimedCallback {
    Micros at = 0;
    CallbackRecord record;
    QString about; ///< the variable it speaks of
};

struct Statistics {
    qint64 turns = 0; ///< frames sent
    qint64 good = 0, failed = 0, retries = 0;
    QMap<int, qint64> byResult; ///< by ResultCode, errors by the first code of their group
    qint64 cyclicReads = 0;     ///< finished or given up
    qint64 discarded = 0;       ///< bytes
    qint64 linkLosses = 0;
    qint64 finishDone = 0, finishFailed = 0, fails = 0;
    QVector<TimedCallback> callbacks; ///< the latest, see countCallback
};

struct Rate {
    Micros since = 0;
    qint64 base = 0;
    double perSecond = 0;
};

/// The entry of RESULTS that a code belongs to, null for a retry or an unknown code.
const ResultInfo* resultInfo(int code);
QString resultMeaning(int code);

void countReply(Statistics* statistics, int result);
void countCallback(Statistics* statistics, const TimedCallback& callback);

/// Passes over all `blocks` of the read list in a second.
double scansPerSecond(qint64 cyclicReads, int blocks, Micros time);

/// Takes the rate of the last second anew when a second has passed.
void updateRate(Rate* rate, qint64 cyclicReads, int blocks, Micros now);
