#include "ImuRecording.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "ColumnScan.h"

namespace imunoise {

namespace {

using recording::Column;

constexpr double kNsPerS = 1e9;
constexpr int kStaticState = 0;  // the SDK's CAMERA_MOTION_STATE::STATIC

std::string format(const char* pattern, double a, double b = 0.0, double c = 0.0) {
    char text[256];
    std::snprintf(text, sizeof text, pattern, a, b, c);
    return text;
}

struct Timing {
    std::string refusal;
    double rateHz = 0.0;
    GapReport gaps;
};

std::int64_t medianSpacing(const std::vector<std::int64_t>& times) {
    std::vector<std::uint32_t> spacings(times.size() - 1);
    for (std::size_t i = 1; i < times.size(); ++i) {
        const std::int64_t d = times[i] - times[i - 1];
        spacings[i - 1] = static_cast<std::uint32_t>(
            std::clamp<std::int64_t>(d, 0, std::numeric_limits<std::uint32_t>::max()));
    }
    auto middle = spacings.begin() + static_cast<std::ptrdiff_t>(spacings.size() / 2);
    std::nth_element(spacings.begin(), middle, spacings.end());
    return *middle;
}

Timing checkTiming(const std::vector<std::int64_t>& times) {
    Timing timing;
    for (std::size_t i = 1; i < times.size(); ++i) {
        if (times[i] < times[i - 1]) {
            timing.refusal = "The IMU timestamps go back at line " + std::to_string(i + 2) + ".";
            return timing;
        }
    }
    const std::int64_t median = medianSpacing(times);
    if (median <= 0) {
        timing.refusal = "Most IMU timestamps repeat the one before: the sample rate is unknown.";
        return timing;
    }
    const double gapLimit = kGapFactor * static_cast<double>(median);
    double evenTime = 0.0;
    std::size_t evenIntervals = 0;
    GapReport& gaps = timing.gaps;
    for (std::size_t i = 1; i < times.size(); ++i) {
        const auto spacing = static_cast<double>(times[i] - times[i - 1]);
        if (spacing <= gapLimit) {
            evenTime += spacing;
            ++evenIntervals;
            continue;
        }
        if (gaps.count++ == 0) {
            gaps.firstAtS = static_cast<double>(times[i - 1]) / kNsPerS;
            gaps.firstLine = i + 2;  // the header is line 1, row 0 line 2
        }
        gaps.largestS = std::max(gaps.largestS, spacing / kNsPerS);
        gaps.missingSamples +=
            static_cast<std::size_t>(std::llround(spacing / static_cast<double>(median))) - 1;
    }
    timing.rateHz = evenTime > 0 ? static_cast<double>(evenIntervals) * kNsPerS / evenTime : 0.0;
    return timing;
}

std::string describeGaps(const GapReport& gaps, std::size_t rows) {
    const double share =
        static_cast<double>(gaps.missingSamples) / static_cast<double>(rows + gaps.missingSamples);
    return std::to_string(gaps.count) + (gaps.count == 1 ? " gap" : " gaps") +
           " in the IMU timestamps, about " + std::to_string(gaps.missingSamples) +
           " samples missing (" + format("%.3g %%", 100.0 * share) + "); the largest lasts " +
           format("%.3g s", gaps.largestS) + ", the first is at " +
           format("%.1f s", gaps.firstAtS) + " (line " + std::to_string(gaps.firstLine) + ").";
}

// Share of the rows whose motion state is not "static".
double movingShare(const recording::ScannedColumn& moving) {
    std::size_t movingRows = 0;
    for (const float offset : moving.offsets)
        if (std::lround(moving.origin + offset) != kStaticState) ++movingRows;
    return static_cast<double>(movingRows) / static_cast<double>(moving.offsets.size());
}

// How far the length of the one-second mean acceleration swings over the recording.
double normSwing(const ImuSeries& series, const recording::ColumnScan& scan) {
    const auto window = static_cast<std::size_t>(std::max(1.0, std::round(series.rateHz)));
    double lowest = std::numeric_limits<double>::max(), highest = 0.0;
    for (std::size_t begin = 0; begin + window <= series.samples; begin += window) {
        double squared = 0.0;
        for (int c = 0; c < 3; ++c) {
            const recording::ScannedColumn* column =
                scan.find(columnOf(axisOf(Sensor::ACCELEROMETER, c)));
            double sum = 0.0;
            for (std::size_t i = begin; i < begin + window; ++i) sum += column->offsets[i];
            const double mean = column->origin + sum / static_cast<double>(window);
            squared += mean * mean;
        }
        lowest = std::min(lowest, std::sqrt(squared));
        highest = std::max(highest, std::sqrt(squared));
    }
    return highest >= lowest ? highest - lowest : 0.0;
}

void warnUnlessStill(ImuSeries& series, const recording::ColumnScan& scan) {
    if (const recording::ScannedColumn* moving = scan.find(Column::MOVING)) {
        const double share = movingShare(*moving);
        if (share > kMovingShare) {
            series.warnings.push_back(
                format("The camera was not still: the motion state says moving in %.1f %% of "
                       "the rows. The numbers describe the motion, not the sensor noise.",
                       100.0 * share));
            return;
        }
    }
    if (scan.find(Column::ACC_X) == nullptr) return;
    const double swing = normSwing(series, scan);
    if (swing > kNormSwingLimit) {
        series.warnings.push_back(
            format("The camera was not still: the length of the one-second mean acceleration "
                   "varies by %.2f m/s^2 (more than %.2f). The numbers describe the motion, "
                   "not the sensor noise.",
                   swing, kNormSwingLimit));
    }
}

}  // namespace

LoadResult loadImuRecording(const std::string& path, const std::function<bool(double)>& progress,
                            int threads) {
    LoadResult result;
    std::vector<Column> wanted;
    for (const ImuAxis axis : kAxes) wanted.push_back(columnOf(axis));
    wanted.push_back(Column::MOVING);
    recording::ScanOptions options;
    options.threads = threads;
    options.progress = progress;
    recording::ScanResult read = recording::scanColumns(path, wanted, options);
    if (!read.scan) {
        result.cancelled = read.cancelled;
        result.refusal = read.problem.line > 0 ? "Line " + std::to_string(read.problem.line) +
                                                     ": " + read.problem.text
                                               : read.problem.text;
        return result;
    }
    recording::ColumnScan& scan = *read.scan;
    const bool gyroscope = scan.find(Column::GYRO_X) != nullptr;
    const bool accelerometer = scan.find(Column::ACC_X) != nullptr;
    if (!gyroscope && !accelerometer) {
        result.refusal =
            "The recording holds neither gyroscope nor accelerometer columns: record it with "
            "those groups chosen in the recording options.";
        return result;
    }
    if (scan.rowCount < 3) {
        result.refusal = "The recording is too short for the noise analysis.";
        return result;
    }
    ImuSeries series;
    series.samples = scan.rowCount;
    const Timing timing = checkTiming(scan.imuTimeNs);
    if (!timing.refusal.empty()) {
        result.refusal = timing.refusal;
        return result;
    }
    series.rateHz = timing.rateHz;
    series.gaps = timing.gaps;
    // Each sample stands for one period: n samples cover n periods.
    series.durationS = static_cast<double>(scan.imuTimeNs.back()) / kNsPerS + 1.0 / series.rateHz;
    if (series.durationS < kMinimumDurationS) {
        result.refusal = format(
            "The recording lasts %.0f s: the noise analysis needs at least "
            "%.0f s, and an hour or more for the random walk.",
            series.durationS, kMinimumDurationS);
        return result;
    }
    if (series.gaps.count > 0) {
        const std::string gaps = describeGaps(series.gaps, scan.rowCount);
        const double missing = static_cast<double>(series.gaps.missingSamples) /
                               static_cast<double>(scan.rowCount + series.gaps.missingSamples);
        if (missing > kMostMissingShare) {
            result.refusal = gaps +
                             " More than 0.1 % are missing, and the Allan deviation "
                             "assumes evenly spaced samples.";
            return result;
        }
        series.warnings.push_back(gaps);
    }
    std::vector<std::int64_t>().swap(scan.imuTimeNs);
    if (series.durationS < kRecommendedDurationS) {
        series.warnings.push_back(
            format("The recording lasts %.0f min: the random walk rests on few clusters. Record an "
                   "hour or more.",
                   series.durationS / 60.0));
    }
    warnUnlessStill(series, scan);
    for (recording::ScannedColumn& column : scan.columns) {
        for (const ImuAxis axis : kAxes)
            if (column.column == columnOf(axis)) series.values[indexOf(axis)].swap(column.offsets);
    }
    result.series = std::move(series);
    return result;
}

}  // namespace imunoise
