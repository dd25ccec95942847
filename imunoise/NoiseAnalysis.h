// The whole noise analysis of one recording: read and check its IMU columns, then per axis the
// Allan deviation curve and the noise terms fitted to it.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "AllanDeviation.h"
#include "ImuRecording.h"
#include "NoiseFit.h"

namespace imunoise {

struct AxisResult {
    bool present = false;
    std::vector<AdevPoint> curve;  // in SI units: rad/s, m/s²
    AxisNoise noise;
};

struct NoiseReport {
    std::string path;
    std::string refusal;  // why the file was not analysed; empty when it was
    bool cancelled = false;
    std::vector<std::string> warnings;
    double rateHz = 0.0;
    double durationS = 0.0;
    std::size_t samples = 0;
    GapReport gaps;
    std::array<AxisResult, kAxisCount> axes;

    bool analysed() const { return refusal.empty() && !cancelled; }
    const AxisResult& operator[](ImuAxis axis) const { return axes[indexOf(axis)]; }
    bool has(Sensor sensor) const { return (*this)[axisOf(sensor, 0)].present; }
};

struct AnalysisOptions {
    int threads = 0;  // 0: one per processor core
    // Asked now and then with the share of the work done (0 to 1); false cancels.
    std::function<bool(double)> progress;
};

NoiseReport analyseRecording(const std::string& path, const AnalysisOptions& options = {});

// The analysis of series already read (for callers that make their own).
void analyseSeries(ImuSeries& series, NoiseReport& report, const AnalysisOptions& options);

}  // namespace imunoise
