// The six IMU axes that the noise analysis treats, with their recording columns and SI units.
#pragma once

#include <array>
#include <string_view>

#include "RecordingColumns.h"

namespace imunoise {

enum class ImuAxis : int { GYRO_X, GYRO_Y, GYRO_Z, ACC_X, ACC_Y, ACC_Z };
constexpr int kAxisCount = 6;
constexpr std::array<ImuAxis, kAxisCount> kAxes = {ImuAxis::GYRO_X, ImuAxis::GYRO_Y,
                                                   ImuAxis::GYRO_Z, ImuAxis::ACC_X,
                                                   ImuAxis::ACC_Y,  ImuAxis::ACC_Z};

enum class Sensor { GYROSCOPE, ACCELEROMETER };

constexpr std::size_t indexOf(ImuAxis axis) { return static_cast<std::size_t>(axis); }
constexpr Sensor sensorOf(ImuAxis axis) {
    return static_cast<int>(axis) < 3 ? Sensor::GYROSCOPE : Sensor::ACCELEROMETER;
}
// 0, 1, 2 for x, y, z.
constexpr int componentOf(ImuAxis axis) { return static_cast<int>(axis) % 3; }
constexpr ImuAxis axisOf(Sensor sensor, int component) {
    return static_cast<ImuAxis>((sensor == Sensor::GYROSCOPE ? 0 : 3) + component);
}

// "gyroX" ... "accZ": the names used in exported files.
std::string_view nameOf(ImuAxis axis);
recording::Column columnOf(ImuAxis axis);
// Multiplies the recorded value into SI units: deg/s to rad/s for the gyroscope.
double toSi(ImuAxis axis);

// Units of the rate (rad/s, m/s²) and of the noise terms, in plain text.
std::string_view rateUnit(Sensor sensor);
std::string_view noiseDensityUnit(Sensor sensor);  // rad/s/√Hz, m/s²/√Hz
std::string_view randomWalkUnit(Sensor sensor);    // rad/s²/√Hz, m/s³/√Hz

}  // namespace imunoise
