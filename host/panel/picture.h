// The picture on the terminal as lines of text, and the same in fewer words where there is none.
#pragma once

#include "keys.h"
#include "panel.h"

struct ScreenSize {
    int rows = 0, columns = 0;
};

enum class Emphasis { Plain, Heading, Alert };

struct PictureLine {
    QString text;
    Emphasis emphasis = Emphasis::Plain;
};

/// What the picture shows beside the panel's own state.
struct View {
    QVector<Rate> tagRates; ///< reads a second, one for each tag
    QStringList recent;     ///< the latest events
    Keys keys;
};

/// Link, scan time, queue lengths.
QString statusLine(const Panel& panel, Micros now);
/// State and counters of each station, those that do not answer first.
QStringList stationTexts(const Panel& panel, Micros now);
QString tagHeading();
QString tagLine(const Panel& panel, int index, double readsPerSecond, Micros now);
/// All tags in one line.
QString compactLine(const Panel& panel, Micros now);

/// Rows that the table of tags has.
int tableRows(const Panel& panel, const ScreenSize& size, Micros now);

/// How far the table can be scrolled, in rows.
int lastFirstRow(const Panel& panel, int tableRows);

/// The whole picture: as many lines as the terminal has, none longer. Scrolling stops at the ends.
QVector<PictureLine> picture(const Panel& panel, View* view, const ScreenSize& size, Micros now);
