// What the panel shows while it runs: a table redrawn in place on a terminal, lines elsewhere.
#pragma once

#include "loop.h"

struct ScreenSize {
    int rows = 0, columns = 0;
};

struct Screen {
    bool terminal = false;
    Rate rate;
    Micros shownAt = NEVER;
    int linesDrawn = 0;
    QStringList recent; ///< the latest events
};

Screen openScreen();

/// Shows the events since the last call, and the tags when it is time again.
void showPanel(Screen* screen, Panel* panel);

QString statusLine(const Panel& panel, double scans, Micros now);
QString tagLine(const Panel& panel, int index, Micros now);
/// All tags in one line.
QString compactLine(const Panel& panel, Micros now);
/// The whole picture, no line longer and no more lines than the terminal has.
QStringList picture(const Panel& panel, const Screen& screen, const ScreenSize& size, Micros now);
