// Temperatures of one simulated camera: its electronics warm up over the first minutes after
// start, then wander by a few tenths of a degree. A pure function of time and seed.
#pragma once

#include <array>
#include <cstdint>

#include "Harmonics.hpp"
#include "SensorTimeline.hpp"

namespace bw::sim {

class TemperatureModel {
public:
    TemperatureModel(std::uint64_t seed, std::uint64_t startNs);

    Temperatures at(std::uint64_t ns) const;
    float imuAt(std::uint64_t ns) const;

private:
    struct Sensor {
        double startC = 0.0;   // at power-on
        double warmUpC = 0.0;  // gained over the warm-up
        Harmonic wander;
    };
    enum Location { kImu, kBarometer, kOnboardLeft, kOnboardRight, kLocationCount };

    float read(Location location, std::uint64_t ns) const;

    std::uint64_t startNs_;
    std::uint64_t noiseKey_;
    std::array<Sensor, kLocationCount> sensors_;
};

}  // namespace bw::sim
