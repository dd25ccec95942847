#include "ReplayRecord.hpp"

#include <cmath>

#include "physics/Angles.hpp"

namespace bw::sim {

namespace {

using recording::Column;
using Location = SensorsData::TemperatureData::SENSOR_LOCATION;

// The viewer converts radians to degrees in double; the file holds degrees.
float radiansFromRecordedDegrees(double degrees) {
    return static_cast<float>(degrees * kPi / 180.0);
}

Vector3<float> eulerOf(const Vector3<float>& radians) {
    Rotation rotation;
    rotation.setEulerAngles(radians, true);
    return rotation.getEulerAngles(true);
}

}  // namespace

Timestamp timestampReadingBack(double seconds) {
    const double nearest =
        static_cast<double>(std::llround(static_cast<long double>(seconds) * 1e9L));
    // Doubles this large are 256 ns apart; one of the few nearest divides back exactly.
    double below = nearest, above = nearest;
    for (int step = 0; step < 4; ++step) {
        if (below / 1e9 == seconds) return static_cast<Timestamp>(below);
        if (above / 1e9 == seconds) return static_cast<Timestamp>(above);
        below = std::nextafter(below, -INFINITY);
        above = std::nextafter(above, INFINITY);
    }
    return static_cast<Timestamp>(nearest);
}

Transform poseReadingBack(double xDeg, double yDeg, double zDeg) {
    const Vector3<float> target(radiansFromRecordedDegrees(xDeg), radiansFromRecordedDegrees(yDeg),
                                radiansFromRecordedDegrees(zDeg));
    // Rebuilding a rotation from angles and reading them back loses a few float steps; move the
    // input against the error until the angles read back exactly, or as near as the float
    // rotation allows (for some angles no input reads back exactly).
    Vector3<float> input = target;
    for (int attempt = 0; attempt < 16; ++attempt) {
        const Vector3<float> read = eulerOf(input);
        if (read == target) break;
        for (int axis = 0; axis < 3; ++axis) {
            if (read[axis] == target[axis]) continue;
            const float corrected = input[axis] + (target[axis] - read[axis]);
            input[axis] =
                corrected != input[axis]
                    ? corrected
                    : std::nextafter(input[axis], target[axis] > read[axis] ? INFINITY : -INFINITY);
        }
    }
    Transform pose;
    pose.setEulerAngles(input, true);
    return pose;
}

void fillReplayedRecord(const recording::RecordingFile& file, const recording::Row& row,
                        SensorsData& out) {
    out = SensorsData();
    auto& imu = out.imu;
    imu.is_available = true;
    imu.timestamp = timestampReadingBack(row[Column::IMU_TIME]);
    imu.linear_acceleration = {static_cast<float>(row[Column::ACC_X]),
                               static_cast<float>(row[Column::ACC_Y]),
                               static_cast<float>(row[Column::ACC_Z])};
    imu.angular_velocity = {static_cast<float>(row[Column::GYRO_X]),
                            static_cast<float>(row[Column::GYRO_Y]),
                            static_cast<float>(row[Column::GYRO_Z])};
    if (file.has(Column::ORIENT_X))
        imu.pose =
            poseReadingBack(row[Column::ORIENT_X], row[Column::ORIENT_Y], row[Column::ORIENT_Z]);
    out.camera_moving_state =
        static_cast<SensorsData::CAMERA_MOTION_STATE>(std::lround(row[Column::MOVING]));

    if (file.has(Column::MAG_TIME)) {
        auto& mag = out.magnetometer;
        mag.is_available = true;
        mag.timestamp = timestampReadingBack(row[Column::MAG_TIME]);
        // The file keeps the field as measured; replayed, it is its own calibrated value.
        mag.magnetic_field_uncalibrated = {static_cast<float>(row[Column::MAG_X]),
                                           static_cast<float>(row[Column::MAG_Y]),
                                           static_cast<float>(row[Column::MAG_Z])};
        mag.magnetic_field_calibrated = mag.magnetic_field_uncalibrated;
    }
    if (file.has(Column::BARO_TIME)) {
        auto& baro = out.barometer;
        baro.is_available = true;
        baro.timestamp = timestampReadingBack(row[Column::BARO_TIME]);
        baro.pressure = static_cast<float>(row[Column::PRESSURE] * 100.0);  // hPa in the file
        baro.relative_altitude = static_cast<float>(row[Column::ALTITUDE]);
    }
    if (file.has(Column::TEMP_LEFT)) {
        auto& t = out.temperature;
        const auto set = [&t](Location location, double celsius) {
            t.value[static_cast<int>(location)] = static_cast<float>(celsius);
            t.available[static_cast<int>(location)] = true;
        };
        set(Location::IMU, row[Column::TEMP_IMU]);
        set(Location::BAROMETER, row[Column::TEMP_BAROMETER]);
        set(Location::ONBOARD_LEFT, row[Column::TEMP_LEFT]);
        set(Location::ONBOARD_RIGHT, row[Column::TEMP_RIGHT]);
    }
}

}  // namespace bw::sim
