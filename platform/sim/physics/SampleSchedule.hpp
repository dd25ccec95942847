// Timestamps of one periodic sample stream of a simulated device: a nominal period stretched by
// the device clock's error, a fixed phase and bounded jitter. The k-th timestamp is a pure
// function of k, which lets a timeline skip long stretches of time without drawing every
// sample, and stays strictly increasing as long as the jitter is below half a period.
#pragma once

#include <cmath>
#include <cstdint>

#include "Noise.hpp"

namespace bw::sim {

class SampleSchedule {
public:
    SampleSchedule(std::uint64_t startNs, double periodNs, double phaseNs, double jitterNs,
                   std::uint64_t jitterKey)
        : startNs_(startNs),
          periodNs_(periodNs),
          phaseNs_(phaseNs),
          jitterNs_(jitterNs),
          jitterKey_(jitterKey) {}

    std::uint64_t at(std::uint64_t index) const {
        const double offset = phaseNs_ + periodNs_ * static_cast<double>(index) +
                              jitterNs_ * noise::uniformSymmetric(jitterKey_, index);
        return startNs_ + static_cast<std::uint64_t>(std::llround(offset));
    }

    double periodNs() const { return periodNs_; }

private:
    std::uint64_t startNs_;
    double periodNs_;
    double phaseNs_;  // at least jitterNs_, so no sample is stamped before the start
    double jitterNs_;
    std::uint64_t jitterKey_;
};

}  // namespace bw::sim
