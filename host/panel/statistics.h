// Counters of a run.
#pragma once

#include "callbacks.h"
#include "histogram.h"

#include <QMap>
#include <QPair>
#include <QString>

struct TimedCallback {
    Micros at = 0;
    CallbackRecord record;
    QString about; ///< the variable it speaks of
};

/// What was exchanged with one station.
struct StationCounters {
    qint64 turns = 0; ///< frames sent and judged
    qint64 good = 0, failed = 0, unanswered = 0, retries = 0;
    qint64 bytesSent = 0, bytesReceived = 0;
    QMap<int, qint64> byResult; ///< by ResultCode, errors by the first code of their group
    Histogram scans;            ///< from one good read of a block to its next, outages left out
    Micros lastScan = NEVER;    ///< the latest of them
    QMap<QPair<int, int>, Micros> lastRead; ///< by area and address of the block
};

struct Statistics {
    QMap<int, StationCounters> stations;
    qint64 blocksRead = 0, blocksGivenUp = 0;
    qint64 discarded = 0; ///< bytes that were no reply to the request before them
    qint64 linkLosses = 0;
    qint64 finishDone = 0, finishFailed = 0, fails = 0;
    QVector<TimedCallback> callbacks; ///< the latest, see countCallback
};

/// What one turn came to.
struct Turn {
    int station = 0;
    int result = 0; ///< ResultCode
    int bytesSent = 0, bytesReceived = 0;
    bool replyExpected = true;
};

struct Rate {
    Micros since = 0;
    qint64 base = 0;
    double perSecond = 0;
};

/// The entry of RESULTS that a code belongs to, null for a retry or an unknown code.
const ResultInfo* resultInfo(int code);
bool isGood(int result);
QString resultMeaning(int code);

void countTurn(Statistics* statistics, const Turn& turn);
void countCallback(Statistics* statistics, const TimedCallback& callback);

/// A block of the read list was received at `now`, or given up: that ends its run of scans.
void countBlock(Statistics* statistics, const RW_VAR& block, bool good, Micros now);

/// All stations in one, without their blocks.
StationCounters totalOf(const Statistics& statistics);

/// Takes the rate of the last second anew when a second has passed.
void updateRate(Rate* rate, qint64 count, Micros now);
