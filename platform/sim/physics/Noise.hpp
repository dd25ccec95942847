// Counter-based pseudo-random numbers for the simulation. Every value is a pure function of a
// stream key and a sample index, so a stream can be skipped over or replayed in any order and
// still yields the same numbers: the simulated sensors stay identical however the caller slices
// time into advance steps.
#pragma once

#include <cstdint>

namespace bw::sim::noise {

// SplitMix64 finaliser: a cheap, well-mixing bijection on 64-bit words.
constexpr std::uint64_t mix(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15ull;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
    return x ^ (x >> 31);
}

// The independent random streams of one simulated camera.
enum class Stream : std::uint64_t {
    MotionParameters = 1,
    ImuJitter,
    MagJitter,
    BaroJitter,
    ClockError,
    Accelerometer,
    Gyroscope,
    GyroBias,
    Magnetometer,
    Barometer,
    Weather,
    Temperature,
    AccelerometerWalk,
    AccelerometerWalkBlocks,
    GyroscopeWalk,
    GyroscopeWalkBlocks,
};

// Key of one stream (and one axis of it) of the camera with the given seed.
constexpr std::uint64_t key(std::uint64_t seed, Stream stream, std::uint64_t axis = 0) {
    return mix(mix(seed) ^ mix(static_cast<std::uint64_t>(stream) * 8 + axis));
}

constexpr std::uint64_t hash(std::uint64_t streamKey, std::uint64_t index) {
    return mix(streamKey ^ mix(index));
}

// Uniform in [0, 1).
inline double uniform01(std::uint64_t streamKey, std::uint64_t index) {
    return static_cast<double>(hash(streamKey, index) >> 11) * 0x1.0p-53;
}

// Uniform in [-1, 1).
inline double uniformSymmetric(std::uint64_t streamKey, std::uint64_t index) {
    return 2.0 * uniform01(streamKey, index) - 1.0;
}

// Zero mean, unit variance, bell-shaped: the sum of four 16-bit uniforms taken from one hash.
// Its tails stop at about 3.5 sigma, which is all sensor noise needs, and it costs a single hash
// instead of the logarithm and square root of an exact normal sample.
inline double gaussian(std::uint64_t streamKey, std::uint64_t index) {
    const std::uint64_t h = hash(streamKey, index);
    const double sum =
        static_cast<double>((h & 0xFFFF) + ((h >> 16) & 0xFFFF) + ((h >> 32) & 0xFFFF) + (h >> 48));
    constexpr double kMean = 4.0 * 65535.0 / 2.0;
    constexpr double kSigma = 65536.0 * 0.5773502691896258;  // sqrt(4 / 12) of the range
    return (sum - kMean) / kSigma;
}

// Draws a sequence of fixed parameters (frequencies, phases, offsets) from one stream.
class ParameterDraw {
public:
    explicit ParameterDraw(std::uint64_t streamKey) : key_(streamKey) {}

    double uniform(double lo, double hi) { return lo + (hi - lo) * uniform01(key_, next_++); }

private:
    std::uint64_t key_;
    std::uint64_t next_ = 0;
};

}  // namespace bw::sim::noise
