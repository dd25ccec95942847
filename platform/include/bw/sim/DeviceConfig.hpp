// Description of one simulated camera: identity, motion, magnetic distortion, hot-plug times
// and injected faults. Scenarios are lists of these.
#pragma once

#include <bw/geometry.hpp>
#include <bw/types.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace bw::sim {

enum class MotionProfile {
    Still,     // standing on a table
    Gentle,    // held in a hand: slow sway of a few degrees, small accelerations
    Tumbling,  // turned through every orientation, as for a magnetometer calibration
};

const char* toString(MotionProfile profile);
std::optional<MotionProfile> motionProfileFromString(const std::string& text);

// Faults a scenario or a test can switch on. All off by default.
struct Faults {
    bool magSaturated = false;           // uncalibrated magnetometer z reads exactly 2048 µT
    bool repeatedImuTimestamps = false;  // every other IMU record repeats the previous timestamp
    bool imuUnavailable = false;
    bool magUnavailable = false;  // reported unavailable although the model has one
    bool baroUnavailable = false;
    bool temperatureLeftFails = false;   // location ONBOARD_LEFT read fails
    bool temperatureRightFails = false;  // location ONBOARD_RIGHT read fails
    bool openFails = false;              // Camera::open answers FAILURE
    bool gpuMemoryFails = false;         // GPU preparation after opening fails
    bool grabFails = false;              // grab answers FAILURE; sensor records go on
    bool mcuOpenFails = false;           // ORYXmcu::open fails
    bool mcuReadFails = false;           // IMU reader records come back invalid
    bool eepromWriteFails = false;       // writeMagCalibInEEprom answers an error
    int eepromBadReads =
        0;  // the next N EEPROM reads return values that differ from what is stored
};

struct DeviceConfig {
    MODEL model = MODEL::ORYX_D;
    unsigned int serial = 0;  // 0: derived from the model and the camera's index
    int cameraId = 0;
    unsigned int cameraFirmware = 1523;
    unsigned int sensorFirmware = 777;
    unsigned short mcuRelease = 0x0109;  // HID release number, shown as "v1.9"
    Resolution resolution{1920, 1200};
    MotionProfile motion = MotionProfile::Gentle;
    std::uint64_t seed = 1;
    // Where a still or gently moving camera faces: its heading in degrees, clockwise from
    // magnetic north as the micro-controller reports it. Absent: drawn from the seed. A tumbling
    // camera faces every way and ignores it.
    std::optional<double> headingDeg;

    // IMU output rate in Hz. Benchmarks raise it to see how fast a reader can keep up; the
    // timeline clamps it to [kMinImuRateHz, kMaxImuRateHz] so that its one-second history stays
    // a bounded number of samples.
    static constexpr double kMinImuRateHz = 1.0;
    static constexpr double kMaxImuRateHz = 100'000.0;
    double imuRateHz = 400.0;

    // IMU noise in continuous time and SI units, per axis of the reported frame (x right, y down,
    // z forward), as visual-inertial pipelines describe it: white noise of density
    // gyroNoise (rad/s/√Hz) and accNoise (m/s²/√Hz), plus a bias random walk of strength
    // gyroWalk (rad/s²/√Hz) and accWalk (m/s³/√Hz) on top of the gyroscope's constant bias.
    // The densities give 0.05 °/s and 0.02 m/s² per sample at 400 Hz.
    static constexpr double kDefaultGyroNoise = 4.363323129985824e-5;
    static constexpr double kDefaultAccNoise = 1e-3;
    Vector3<double> gyroNoise{kDefaultGyroNoise, kDefaultGyroNoise, kDefaultGyroNoise};
    Vector3<double> gyroWalk{2e-5, 2e-5, 2e-5};
    Vector3<double> accNoise{kDefaultAccNoise, kDefaultAccNoise, kDefaultAccNoise};
    Vector3<double> accWalk{3e-4, 3e-4, 3e-4};

    // Magnetic distortion, in the micro-controller's magnetometer axes d0, d1, d2:
    // measured = softIronScale * trueField + hardIronOffset (µT).
    Vector3<float> hardIronOffset{18.f, -11.f, 7.f};
    Vector3<float> softIronScale{1.06f, 0.95f, 1.01f};

    // Seconds after the simulation starts; unplugAt absent: stays plugged.
    double plugAt = 0.0;
    std::optional<double> unplugAt;
    // Path of a recording that this camera replays; empty for a simulated live camera. Listed
    // with the path as its device path, it opens only from the file.
    std::string recording;

    Faults faults;

    // Serial number as the scenario parser completes it: models 1..3 carry their model digit as
    // the leading digit of an 8-digit serial (serial / 10,000,000 == model code).
    static unsigned int defaultSerial(MODEL model, int index);
};

// Every model code, in code order: the stereo models before the single-sensor ones.
constexpr MODEL kModels[] = {MODEL::ORYX,   MODEL::ORYX_B, MODEL::ORYX_C,      MODEL::ORYX_D,
                             MODEL::ORYX_E, MODEL::ORYX_F, MODEL::ORYX_SOLO_A, MODEL::ORYX_SOLO_B};

// The model that bw::toString names so, in any case; none for another name.
std::optional<MODEL> modelNamed(std::string_view name);

// What the model code says the camera carries.
struct SensorSet {
    bool magnetometer = false;
    bool barometer = false;
    bool onboardTemperatures = false;  // ONBOARD_LEFT/RIGHT and BAROMETER locations
};
SensorSet sensorsOf(MODEL model);

}  // namespace bw::sim
