#include "McuRecords.hpp"

#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>
#include <limits>

#include "physics/Angles.hpp"
#include "Eeprom.hpp"

namespace bw::sim {

namespace {

constexpr double kStandardGravity = 9.80665;
constexpr double kNsPerTick = MCU_TICK_US * 1000.0;
constexpr double kMagCountsPerUt = 1.0 / MCU_MAG_UT_PER_COUNT;
// Below this, a horizontal field or gravity vector has no usable direction.
constexpr float kDegenerate = 1e-6f;

std::int16_t centiCelsius(float celsius) { return toCounts(celsius, 100.0); }

Eigen::Vector3f toEigen(const Vector3<float>& v) { return {v.x, v.y, v.z}; }

void copy3(const Vector3<float>& v, float* out) {
    out[0] = v.x;
    out[1] = v.y;
    out[2] = v.z;
}

// The direction of gravity (down) seen from the camera: the world's down turned back by the
// camera's pose (camera to world).
Vector3<float> gravityInCamera(const Orientation& pose) {
    return Translation(0.f, 0.f, -1.f) * pose.conjugate();
}

}  // namespace

std::int16_t toCounts(double value, double countsPerUnit) {
    const double counts = std::round(value * countsPerUnit);
    constexpr double lo = std::numeric_limits<std::int16_t>::min();
    constexpr double hi = std::numeric_limits<std::int16_t>::max();
    return static_cast<std::int16_t>(std::clamp(counts, lo, hi));
}

std::uint64_t toTicks(std::uint64_t ns) { return static_cast<std::uint64_t>(ns / kNsPerTick); }

void fillReaderImu(const DeviceState& state, const ImuSample& imu, _imu_reader_data& record) {
    record.timestamp = toTicks(imu.timestampNs);
    for (int i = 0; i < 3; ++i) {
        record.acc[i] = toCounts(imu.acceleration[i], kAccCountsPerMs2);
        record.gyro[i] = toCounts(imu.angularVelocity[i], kGyroCountsPerDegS);
    }
    record.imu_temperature = centiCelsius(imu.imuTemperature);
    const SensorSet sensors = sensorsOf(state.config().model);
    if (const BaroSample* baro =
            sensors.barometer ? state.timeline.baroAt(imu.timestampNs) : nullptr) {
        record.pressure = static_cast<std::int32_t>(std::lround(baro->pressurePa));
    }
    if (sensors.onboardTemperatures) {
        record.baro_temperature =
            centiCelsius(state.timeline.temperaturesAt(imu.timestampNs).barometer);
    }
}

void fillReaderMag(const DeviceState& state, const MagSample& mag, _imu_reader_data& record) {
    const Vector3<float> raw = state.reportedMagField(mag);
    for (int i = 0; i < 3; ++i) {
        record.mag[i] = toCounts(raw[i], kMagCountsPerUt);
    }
}

_imu_pose_data makePoseRecord(DeviceState& state, const ImuSample& imu) {
    _imu_pose_data pose{};
    pose.valid = 1;
    pose.timestamp = toTicks(imu.timestampNs);
    pose.orientation[0] = imu.pose.x;
    pose.orientation[1] = imu.pose.y;
    pose.orientation[2] = imu.pose.z;
    pose.orientation[3] = imu.pose.w;
    copy3(Rotation(imageFromCameraPose(imu.pose)).getEulerAngles(true), pose.euler);

    const Vector3<float> down = gravityInCamera(imu.pose);
    for (int i = 0; i < 3; ++i) {
        pose.acc[i] = imu.acceleration[i];
        pose.gyro[i] = static_cast<float>(imu.angularVelocity[i] * kDegToRad);
        // The accelerometer reads +g upwards at rest; adding g along "down" leaves the motion.
        pose.linear_acc[i] = static_cast<float>(imu.acceleration[i] + down[i] * kStandardGravity);
    }
    const Vector3<float> gravity = deviceFromCameraAxes(down);
    copy3(gravity, pose.gravity);

    if (const MagSample* mag = state.timeline.magAt(imu.timestampNs)) {
        const Vector3<float> raw = state.reportedMagField(*mag);
        const Vector3<float> calibrated = applyMagCalibration(state.eeprom, raw);
        copy3(raw, pose.mag);
        copy3(calibrated, pose.mag_calibrated);
        pose.mag_heading = magHeading(calibrated, gravity);
    }
    const MagCalibAssessment& assessment = state.magCalibAssessment();
    pose.mag_calib_status = assessment.status;
    pose.mag_calib_quality = assessment.quality;
    return pose;
}

float magHeading(const Vector3<float>& magDevice, const Vector3<float>& gravityDevice) {
    const Eigen::Vector3f field = toEigen(cameraFromDeviceAxes(magDevice));
    const Eigen::Vector3f gravity = toEigen(cameraFromDeviceAxes(gravityDevice));
    if (gravity.norm() < kDegenerate) {
        return 0.f;
    }
    const Eigen::Vector3f down = gravity.normalized();
    // Horizontal part of the field: magnetic north, whatever the inclination and the tilt.
    Eigen::Vector3f north = field - field.dot(down) * down;
    if (north.norm() < kDegenerate) {
        return 0.f;
    }
    north.normalize();
    const Eigen::Vector3f east = down.cross(north);            // north, east, down is right-handed
    const Eigen::Vector3f forward = Eigen::Vector3f::UnitX();  // the optical axis
    return std::atan2(forward.dot(east), forward.dot(north));
}

}  // namespace bw::sim
