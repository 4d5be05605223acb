// What a run shows while it goes on: the screen, records of changes, or lines of text.
#pragma once

#include "picture.h"
#include "records.h"

enum class Output {
    Screen, ///< live table, keys
    Json,   ///< a record for each change
    Text,   ///< events, and all values once a second
    Events  ///< events alone
};

struct Display {
    Output output = Output::Text;
    View view;
    Recorder recorder;
    Micros shownAt = NEVER;
};

/// @param startedAtMs time 0 of the panel's clock, since the epoch
/// @return what is wrong, empty when nothing
QString openDisplay(Display* display, const Panel& panel, qint64 startedAtMs);

/// Shows what is new and takes the keys. @return true when the person wants to end the run
bool updateDisplay(Display* display, Panel* panel);

/// Whoever read standard output has gone.
bool readerGone();

/// Shows what is new and gives the terminal back.
void closeDisplay(Display* display, Panel* panel);
