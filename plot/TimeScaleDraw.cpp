#include "TimeScaleDraw.h"

#include <cmath>

namespace {

constexpr double kSecondsPerDay = 86400.0;

}  // namespace

TimeScaleDraw::TimeScaleDraw(const QTime& base) : baseTime(base) {}

TimeScaleDraw::~TimeScaleDraw() = default;

QwtText TimeScaleDraw::label(double value) const {
    if (!std::isfinite(value)) {
        return QwtText();
    }
    // QTime wraps a day anyway; taking the day off first keeps the conversion to int in range
    // for any axis value. Both fmod and the cast truncate towards zero, as a plain cast would.
    const int seconds = static_cast<int>(std::fmod(value, kSecondsPerDay));
    return QwtText(baseTime.addSecs(seconds).toString());
}
