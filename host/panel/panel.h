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

/// Entries of the driver's lists.
struct Queues {
    int writes = 0, onceReads = 0, cyclicReads = 0;
};

struct Panel {
    DriverApi driver;
    ComInfo info = {};
    int retries = 0;  ///< retryLimit but for probes
    int patience = 0; ///< see noteGivenUp
    Micros timeout = 0, delay = 0;
    bool echo = false; ///< the line brings back what is sent

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
    QString lastFail;
    QVector<Event> events; ///< not shown yet
};

void note(Panel* panel, const QString& text);

/// Seconds with two decimals, as notes show them.
QString secondsText(Micros time);

Quality qualityAt(const Panel& panel, int tag, Micros now);

/// Lengths of the driver's lists now. Takes its list lock.
Queues queueLengths(const Panel& panel);
