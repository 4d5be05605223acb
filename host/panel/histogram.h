// A distribution of times in bounded memory, so that a run may last for years: buckets of a 32nd of
// an octave each, which puts a percentile within 3.2 percent of the true one.
#pragma once

#include "timing.h"

#include <QVector>

struct Histogram {
    QVector<quint32> buckets; ///< grows to the largest value seen, 1,888 entries at most
    qint64 count = 0;
    Micros smallest = 0, largest = 0, sum = 0;
};

void addTime(Histogram* histogram, Micros time);
Micros meanTime(const Histogram& histogram);

/// @param share of the times that are not longer, 0 to 1. @return 0 of none
Micros percentile(const Histogram& histogram, double share);
