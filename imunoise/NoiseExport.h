// What the noise analysis hands on: Kalibr's IMU configuration, the curves as CSV, the results
// as JSON and as a text table.
#pragma once

#include <optional>
#include <string>

#include "NoiseAnalysis.h"

namespace imunoise {

// One value per sensor, as Kalibr takes it: the largest axis.
struct SensorValue {
    double value = 0.0;
    ImuAxis axis = ImuAxis::GYRO_X;
};
std::optional<SensorValue> largestNoiseDensity(const NoiseReport& report, Sensor sensor);
std::optional<SensorValue> largestRandomWalk(const NoiseReport& report, Sensor sensor);

// Kalibr's imu.yaml. Empty, with `refusal` filled in, when a sensor or one of its terms is
// missing.
std::string kalibrYaml(const NoiseReport& report, const std::string& rostopic,
                       std::string& refusal);

// "tau_s,gyroX,gyroY,gyroZ,accX,accY,accZ", then one row per cluster time (rad/s, m/s²); an
// axis the recording lacks is left empty.
std::string curvesCsv(const NoiseReport& report);

// {"rate_hz": R, "duration_s": D, "gyroscope": {...}, "accelerometer": {...}}; a term not found
// is null.
std::string resultsJson(const NoiseReport& report);

// The results as a table for a terminal.
std::string resultsTable(const NoiseReport& report);

// Writes the text to the file, replacing it. False with `error` set when it cannot.
bool writeTextFile(const std::string& path, const std::string& text, std::string& error);

}  // namespace imunoise
