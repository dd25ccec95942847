// Which stretch of the sample series the chart shows, and how often it is redrawn.
#pragma once

#include <cstdint>

#include "RowNumber.h"

namespace chart {

// First row of an IMU-rate series to plot: 30 % more samples than the time window needs, so
// that the left edge stays filled while the time axis moves. Never before the first kept row.
RowNumber imuStartRow(RowNumber first, RowNumber end, int timeRangeSeconds, int rate);

// First row of an event series (magnetometer, barometer, temperature), without the margin.
RowNumber eventStartRow(RowNumber first, RowNumber end, int timeRangeSeconds, int rate);

// Redraw period for `count` points on screen: drawing long windows must not saturate the GUI.
int refreshPeriodMs(std::int64_t count);

struct TimeAxis {
    double min = 0.0;
    double max = 0.0;
};

// For samples from time `first` to time `last`: the trace grows from the left until it fills
// the window, then scrolls.
TimeAxis timeAxisFor(double first, double last, int timeRangeSeconds);

}  // namespace chart
