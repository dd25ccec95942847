#include "ChartSpan.h"

namespace chart {

int imuStartIndex(int size, int timeRangeSeconds, int rate) {
    const int n = static_cast<int>(static_cast<double>(timeRangeSeconds * rate) * 1.3);
    return n > size ? 0 : size - n;
}

int eventStartIndex(int size, int timeRangeSeconds, int rate) {
    const int start = size - timeRangeSeconds * rate;
    return start < 0 ? 0 : start;
}

int refreshPeriodMs(int count) {
    if (count <= 12499) return 25;
    if (count <= 249999) return count / 500;
    return 500;
}

TimeAxis timeAxisFor(const QVector<double>& time, int timeRangeSeconds) {
    if (time.isEmpty()) return {};
    const double first = time.first();
    const double last = time.last();
    if (last - first < timeRangeSeconds) return {first, first + timeRangeSeconds};
    return {last - timeRangeSeconds, last};
}

}  // namespace chart
