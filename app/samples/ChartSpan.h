// Which stretch of the sample series the chart shows, and how often it is redrawn.
#pragma once

#include <QVector>

namespace chart {

// First row of an IMU-rate series to plot: 30 % more samples than the time window needs, so
// that the left edge stays filled while the time axis moves.
int imuStartIndex(int size, int timeRangeSeconds, int rate);

// First row of an event series (magnetometer, barometer, temperature), without the margin.
int eventStartIndex(int size, int timeRangeSeconds, int rate);

// Redraw period for `count` points on screen: drawing long windows must not saturate the GUI.
int refreshPeriodMs(int count);

struct TimeAxis {
    double min = 0.0;
    double max = 0.0;
};

// The trace grows from the left until it fills the window, then scrolls.
TimeAxis timeAxisFor(const QVector<double>& time, int timeRangeSeconds);

}  // namespace chart
