// How busy the hand holding a camera is: 1 while it moves the camera, 0 while the camera is set
// down, with smooth raised-cosine ramps in between so that rates and accelerations stay
// continuous. The cycle starts at the beginning of a moving phase.
#pragma once

#include <algorithm>
#include <cmath>

#include "Angles.hpp"
#include "Harmonics.hpp"

namespace bw::sim {

class ActivityEnvelope {
public:
    // Always moving.
    ActivityEnvelope() = default;

    // Cycles of cycleS seconds that end in stillS seconds of rest; ramps of rampS seconds.
    ActivityEnvelope(double cycleS, double stillS, double rampS)
        : cycle_(cycleS), still_(stillS), ramp_(rampS) {}

    Smooth at(double t) const {
        if (cycle_ <= 0.0) return {1.0, 0.0, 0.0};
        const double tau = std::fmod(std::max(t, 0.0) + ramp_, cycle_);
        const double rampDownStart = cycle_ - still_ - ramp_;
        if (tau < ramp_) return rampUp(tau / ramp_);
        if (tau < rampDownStart) return {1.0, 0.0, 0.0};
        if (tau < rampDownStart + ramp_) return rampDown((tau - rampDownStart) / ramp_);
        return {0.0, 0.0, 0.0};
    }

private:

    Smooth rampUp(double x) const {
        const double k = kPi / ramp_;
        return {0.5 - 0.5 * std::cos(kPi * x), 0.5 * k * std::sin(kPi * x),
                0.5 * k * k * std::cos(kPi * x)};
    }

    Smooth rampDown(double x) const {
        const Smooth up = rampUp(x);
        return {1.0 - up.value, -up.rate, -up.acceleration};
    }

    double cycle_ = 0.0;
    double still_ = 0.0;
    double ramp_ = 1.0;
};

}  // namespace bw::sim
