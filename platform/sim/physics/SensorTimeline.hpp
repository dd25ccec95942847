// sim/physics: what a simulated camera measures and when: motion, the earth's gravity and
// magnetic field, sensor noise and bias, temperatures, sample timing and the virtual clock.
// Everything is a pure function of a seed and a time or sample index, so streams repeat exactly.
//
// The sample streams of one simulated camera: a deterministic motion model sampled by an IMU
// (about 400 Hz unless configured otherwise), a magnetometer (about 50 Hz) and a barometer (about
// 25 Hz), with timestamp jitter, plus slowly drifting temperatures. Samples are generated lazily up
// to the time asked for and kept for at least one second. Not thread-safe: the owning device
// serialises access.
#pragma once

#include <bw/geometry.hpp>
#include <bw/sim/DeviceConfig.hpp>
#include <cstdint>
#include <memory>

namespace bw::sim {

struct ImuSample {
    std::uint64_t timestampNs = 0;
    Orientation pose;                // camera frame to world frame (world: z up, x north)
    Vector3<float> acceleration;     // m/s², camera frame, specific force (reads +g up at rest)
    Vector3<float> angularVelocity;  // deg/s, camera frame
    float effectiveRate = 0.f;       // Hz over the last second
    float imuTemperature = 0.f;      // °C
    int movingState = 0;             // SensorsData::CAMERA_MOTION_STATE
};

struct MagSample {
    std::uint64_t timestampNs = 0;
    Vector3<float> trueField;  // µT, device magnetometer axes d0..d2, undistorted
    Vector3<float> rawField;   // µT, device axes, with the configured hard/soft iron distortion
    float effectiveRate = 0.f;
};

struct BaroSample {
    std::uint64_t timestampNs = 0;
    float pressurePa = 0.f;
    float relativeAltitudeM = 0.f;  // height above the height at the first sample
    float effectiveRate = 0.f;
};

struct Temperatures {
    float imu = 0.f, barometer = 0.f, onboardLeft = 0.f, onboardRight = 0.f;
};

// The frame in which a camera reports its sensors: x to the right, y down, z forward along the
// optical axis (the image frame). Its world frame is the image frame of a level camera facing
// magnetic north, so a camera at rest reads a specific force of (0, -9.81, 0) m/s². The motion
// model works in its own frame (MotionModel.hpp); these convert its vectors and poses.
Vector3<float> imageFromCameraAxes(const Vector3<float>& c);
Orientation imageFromCameraPose(const Orientation& q);

// The magnetometer's device axes are the image axes: x = d2, y = -d0, z = -d1 in camera axes.
Vector3<float> cameraFromDeviceAxes(const Vector3<float>& d);
Vector3<float> deviceFromCameraAxes(const Vector3<float>& c);

class SensorTimeline {
public:
    static constexpr std::uint64_t kHistoryNs = 1'000'000'000ull;

    SensorTimeline(const DeviceConfig& config, std::uint64_t startNs);
    ~SensorTimeline();
    SensorTimeline(const SensorTimeline&) = delete;
    SensorTimeline& operator=(const SensorTimeline&) = delete;

    // Generates every sample stamped at or before nowNs (never moves backwards).
    void advanceTo(std::uint64_t nowNs);

    // Null until the first sample exists.
    const ImuSample* newestImu() const;
    // The oldest kept IMU sample stamped after afterNs, or null.
    const ImuSample* firstImuAfter(std::uint64_t afterNs) const;
    // Timestamp the next IMU sample will carry.
    std::uint64_t nextImuDueNs() const;

    const MagSample* magAt(std::uint64_t ns) const;  // newest stamped at or before ns, or null
    const MagSample* firstMagAfter(std::uint64_t afterNs) const;
    std::uint64_t nextMagDueNs() const;

    const BaroSample* baroAt(std::uint64_t ns) const;
    Temperatures temperaturesAt(std::uint64_t ns) const;

    const DeviceConfig& config() const;

private:
    struct State;
    std::unique_ptr<State> s_;
};

}  // namespace bw::sim
