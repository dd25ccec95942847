// The noise terms read off an Allan deviation curve: white-noise density N from the line of
// slope −½ (its value at τ = 1 s), bias random walk K from the line of slope +½ (its value at
// τ = 3 s), bias instability from the curve's minimum (divided by 0.664). A line is fitted only
// where the curve has its slope, found from the local slope of the curve.
#pragma once

#include <optional>
#include <vector>

#include "AllanDeviation.h"

namespace imunoise {

// A line of fixed slope fitted to part of the curve.
struct LineFit {
    double slope = 0.0;    // −½ or +½
    double value = 0.0;    // N or K
    double tauFrom = 0.0;  // the region it was fitted over, s
    double tauTo = 0.0;
    double relativeError = 0.0;  // standard error of `value`, from the clusters in the region

    // The line's deviation at τ.
    double at(double tau) const;
};

struct BiasInstability {
    double value = 0.0;  // minimum deviation / 0.664
    double tau = 0.0;    // where the minimum lies
    bool atEnd = false;  // the curve still falls at its longest τ: an upper bound only
};

struct AxisNoise {
    std::optional<LineFit> white;  // N
    std::optional<LineFit> walk;   // K
    std::optional<BiasInstability> instability;
};

// The slope of log σ over log τ at each point, from a least-squares line through the points
// within a quarter decade either side.
std::vector<double> localSlopes(const std::vector<AdevPoint>& curve);

AxisNoise fitNoise(const std::vector<AdevPoint>& curve);

}  // namespace imunoise
