#include "ChartSpan.h"

#include <algorithm>

namespace chart {

RowNumber imuStartRow(RowNumber first, RowNumber end, int timeRangeSeconds, int rate) {
    const auto n = static_cast<std::int64_t>(static_cast<double>(timeRangeSeconds * rate) * 1.3);
    return std::max(first, end - n);
}

RowNumber eventStartRow(RowNumber first, RowNumber end, int timeRangeSeconds, int rate) {
    return std::max(first, end - std::int64_t{timeRangeSeconds} * rate);
}

int refreshPeriodMs(std::int64_t count) {
    if (count <= 12499) return 25;
    if (count <= 249999) return static_cast<int>(count / 500);
    return 500;
}

TimeAxis timeAxisFor(double first, double last, int timeRangeSeconds) {
    if (last - first < timeRangeSeconds) return {first, first + timeRangeSeconds};
    return {last - timeRangeSeconds, last};
}

}  // namespace chart
