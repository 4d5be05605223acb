// The runtime's loop: ask the driver for a frame, exchange it, hand the reply back, and note what
// came of it. One thread; the panel is a plain record.
#pragma once

#include "driver_api.h"
#include "exchange.h"
#include "statistics.h"
#include "tag_state.h"
#include "writes.h"

struct Event {
    Micros at = 0;
    QString text;
};

struct Panel {
    DriverApi driver;
    ComInfo info = {};
    Link link;
    Clock clock;
    Micros timeout = 0, delay = 0;

    QVector<Tag> tags;
    QVector<TagState> states; ///< one for each tag
    QVector<Write> writes;
    int blocks = 0; ///< entries of the driver's read list

    Statistics statistics;
    QMap<int, Micros> silentSince; ///< the stations that do not answer
    QString lastFail;
    QVector<Event> events; ///< not shown yet

    QByteArray lastFrame;
    Micros lastRequestAt = 0;
    int unanswered = 0; ///< requests since the last one that has had no late reply to fear
};

/// Hands the settings, callbacks and tags to the driver. @return what is wrong, empty when nothing
QString startPanel(Panel* panel);

/// One turn: at most one request and its reply.
void turn(Panel* panel);

/// Nothing comes from the station, be it silent or the link down.
bool stationSilent(const Panel& panel, int station);
