#include "histogram.h"

#include <QtAlgorithms>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int STEP_BITS = 5;
constexpr Micros STEPS = 1 << STEP_BITS; // of an octave
constexpr int VALUE_BITS = 64;

/// Values below STEPS have a bucket each; above, the leading STEP_BITS + 1 bits name it.
int bucketOf(Micros time)
{
    if (time < STEPS)
        return static_cast<int>(std::max(Micros{0}, time));
    const auto value = static_cast<quint64>(time);
    const int shift = VALUE_BITS - 1 - STEP_BITS - static_cast<int>(qCountLeadingZeroBits(value));
    return static_cast<int>(shift * STEPS + (time >> shift));
}

Micros largestOf(int bucket)
{
    if (bucket < STEPS)
        return bucket;
    const int shift = static_cast<int>(bucket / STEPS) - 1;
    const Micros leading = bucket - shift * STEPS;
    return ((leading + 1) << shift) - 1;
}

} // namespace

void addTime(Histogram* histogram, Micros time)
{
    const int bucket = bucketOf(time);
    if (bucket >= histogram->buckets.size())
        histogram->buckets.resize(bucket + 1);
    ++histogram->buckets[bucket];
    histogram->smallest = histogram->count == 0 ? time : std::min(histogram->smallest, time);
    histogram->largest = std::max(histogram->largest, time);
    histogram->sum += time;
    ++histogram->count;
}

Micros meanTime(const Histogram& histogram)
{
    return histogram.count == 0 ? 0 : histogram.sum / histogram.count;
}

Micros percentile(const Histogram& histogram, double share)
{
    const auto wanted =
        static_cast<qint64>(std::ceil(share * static_cast<double>(histogram.count)));
    qint64 seen = 0;
    for (int bucket = 0; bucket < histogram.buckets.size(); ++bucket) {
        seen += histogram.buckets[bucket];
        if (seen >= wanted && seen > 0)
            return std::clamp(largestOf(bucket), histogram.smallest, histogram.largest);
    }
    return 0;
}
