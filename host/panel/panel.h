// The state of the runtime, a plain record that one thread uses.
#pragma once

#include "driver_api.h"
#include "exchange.h"
#include "stations.h"
#include "statistics.h"
#include "tag_state.h"
#include "writes.h"

/// Something that a person should be told.
struct Event {
    Micros at = 0;
    QString text;
};

/// What waits to be sent.
struct Queues {
    int writes = 0; ///< those that wait for their turn in the panel included
    int onceReads = 0;
};

struct Panel {
    DriverApi driver;
    ComInfo info = {};
    int retries = 0;  ///< of one request, see retriesFor
    int patience = 0; ///< see noteGivenUp
    Micros timeout = 0, delay = 0;
    bool echo = false; ///< the line brings back what is sent
    Micros nextTurnAt = 0;
    bool retrying = false; ///< the last reply failed and its frame is sent again

    Link link;
    Clock clock;
    bool paused = false;

    QVector<Tag> tags;
    QVector<TagState> states; ///< one for each tag
    QVector<Write> writes;
    int blocks = 0; ///< entries of the driver's read list

    Statistics statistics;
    QMap<int, StationWatch> stations; ///< all that a tag names
    LateReplies late;
    bool saidLate = false;
    QString lastFail;
    QVector<Event> events; ///< not shown yet
};

void note(Panel* panel, const QString& text);

/// Seconds with two decimals, as notes show them.
QString secondsText(Micros time);
/// Milliseconds with one decimal.
QString millisText(Micros time);

Quality qualityAt(const Panel& panel, int tag, Micros now);

/// Takes the driver's list lock.
Queues queueLengths(const Panel& panel);
