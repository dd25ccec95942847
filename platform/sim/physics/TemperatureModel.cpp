#include "TemperatureModel.hpp"

#include <cmath>

#include "Noise.hpp"

namespace bw::sim {
namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kWarmUpTimeConstantS = 600.0;
constexpr double kNoiseC = 0.02;
// Noise is drawn per 10 ms tick, so that reading the same instant twice gives the same value.
constexpr std::uint64_t kNoiseTickNs = 10'000'000ull;

}  // namespace

TemperatureModel::TemperatureModel(std::uint64_t seed, std::uint64_t startNs)
    : startNs_(startNs), noiseKey_(noise::key(seed, noise::Stream::Temperature, 0)) {
    noise::ParameterDraw draw(noise::key(seed, noise::Stream::Temperature, 1));
    // Settled values: IMU about 38 °C, barometer 34, the boards beside the sensors 41 and 42.
    const double settled[kLocationCount] = {38.0, 34.0, 41.0, 42.0};
    const double warmUp[kLocationCount] = {1.5, 0.8, 1.2, 1.2};
    for (int i = 0; i < kLocationCount; ++i) {
        const double offset = draw.uniform(-0.3, 0.3);
        sensors_[i].startC = settled[i] - warmUp[i] + offset;
        sensors_[i].warmUpC = warmUp[i];
        sensors_[i].wander = Harmonic{draw.uniform(0.05, 0.2), kTwoPi / draw.uniform(120.0, 600.0),
                                      draw.uniform(0.0, kTwoPi)};
    }
}

Temperatures TemperatureModel::at(std::uint64_t ns) const {
    return {read(kImu, ns), read(kBarometer, ns), read(kOnboardLeft, ns), read(kOnboardRight, ns)};
}

float TemperatureModel::imuAt(std::uint64_t ns) const { return read(kImu, ns); }

float TemperatureModel::read(Location location, std::uint64_t ns) const {
    const Sensor& sensor = sensors_[location];
    const std::uint64_t sinceStart = ns > startNs_ ? ns - startNs_ : 0;
    const double t = static_cast<double>(sinceStart) * 1e-9;
    const double warm = sensor.warmUpC * (1.0 - std::exp(-t / kWarmUpTimeConstantS));
    const double wander =
        sensor.wander.amplitude * std::sin(sensor.wander.omega * t + sensor.wander.phase);
    const double n = kNoiseC * noise::gaussian(noiseKey_ + static_cast<std::uint64_t>(location),
                                               sinceStart / kNoiseTickNs);
    return static_cast<float>(sensor.startC + warm + wander + n);
}

}  // namespace bw::sim
