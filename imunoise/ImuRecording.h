// The IMU columns of a recording, read for the noise analysis and checked first: enough of them,
// long enough, evenly sampled, and taken from a camera that stood still.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ImuAxes.h"

namespace imunoise {

// Where the IMU timestamps leave out samples: intervals of more than twice the median spacing.
struct GapReport {
    std::size_t count = 0;
    std::size_t missingSamples = 0;  // samples the gaps would have held
    double largestS = 0.0;
    double firstAtS = 0.0;      // seconds after the first row
    std::size_t firstLine = 0;  // file line of the row after the first gap
};

struct ImuSeries {
    double rateHz = 0.0;  // from the timestamps, gaps left out
    double durationS = 0.0;
    std::size_t samples = 0;
    // Per axis, every row's value minus the first row's, in the recorded unit; empty for an
    // axis the file lacks.
    std::array<std::vector<float>, kAxisCount> values;
    GapReport gaps;
    std::vector<std::string> warnings;

    bool has(ImuAxis axis) const { return !values[indexOf(axis)].empty(); }
    bool has(Sensor sensor) const { return has(axisOf(sensor, 0)); }
};

struct LoadResult {
    std::optional<ImuSeries> series;
    std::string refusal;  // why the file cannot be analysed
    bool cancelled = false;
};

// Limits of the checks.
constexpr double kMinimumDurationS = 100.0;  // the curve then reaches τ = 10 s
constexpr double kRecommendedDurationS = 3600.0;
constexpr double kGapFactor = 2.0;           // an interval this many median spacings long
constexpr double kMostMissingShare = 0.001;  // 0.1 % of the samples
constexpr double kMovingShare = 0.01;        // rows not marked static
constexpr double kNormSwingLimit = 0.3;      // m/s², of one-second mean accelerations

// `progress` is asked now and then with the share read so far; false cancels.
LoadResult loadImuRecording(const std::string& path,
                            const std::function<bool(double)>& progress = {}, int threads = 0);

}  // namespace imunoise
