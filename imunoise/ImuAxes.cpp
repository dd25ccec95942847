#include "ImuAxes.h"

namespace imunoise {

namespace {
constexpr double kDegToRad = 3.14159265358979323846 / 180.0;
}

std::string_view nameOf(ImuAxis axis) {
    constexpr std::array<std::string_view, kAxisCount> kNames = {"gyroX", "gyroY", "gyroZ",
                                                                 "accX",  "accY",  "accZ"};
    return kNames[indexOf(axis)];
}

recording::Column columnOf(ImuAxis axis) {
    using recording::Column;
    constexpr std::array<Column, kAxisCount> kColumns = {Column::GYRO_X, Column::GYRO_Y,
                                                         Column::GYRO_Z, Column::ACC_X,
                                                         Column::ACC_Y,  Column::ACC_Z};
    return kColumns[indexOf(axis)];
}

double toSi(ImuAxis axis) { return sensorOf(axis) == Sensor::GYROSCOPE ? kDegToRad : 1.0; }

std::string_view rateUnit(Sensor sensor) { return sensor == Sensor::GYROSCOPE ? "rad/s" : "m/s^2"; }

std::string_view noiseDensityUnit(Sensor sensor) {
    return sensor == Sensor::GYROSCOPE ? "rad/s/sqrt(Hz)" : "m/s^2/sqrt(Hz)";
}

std::string_view randomWalkUnit(Sensor sensor) {
    return sensor == Sensor::GYROSCOPE ? "rad/s^2/sqrt(Hz)" : "m/s^3/sqrt(Hz)";
}

}  // namespace imunoise
