// Recordings of a simulated camera made on the virtual clock, as fast as the simulation serves
// its samples, and written through the viewer's CSV writer: every new IMU sample becomes one
// row, as the recorder writes it at 400 rows per second. Used where hours of recording are
// needed (noise analysis tests, benchmarks, README pictures) and pushing them through a window
// session would keep every sample in memory.
#pragma once

#include <QString>
#include <bw/Camera.hpp>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <cmath>
#include <cstdint>

#include "csvwriter.h"
#include "recoptions.h"

// The groups the noise analysis reads: timestamps, accelerometer, gyroscope and motion state.
inline RecOptions imuOnlyRecording() {
    RecOptions options;
    options.accelerometer = options.gyroscope = options.movement = true;
    options.magnetometer = options.orientation = options.barometer = options.temperatures = false;
    return options;
}

// Every group, as the recorder's defaults write them.
inline RecOptions everyGroupRecording() {
    RecOptions options;
    options.accelerometer = options.gyroscope = options.movement = true;
    options.magnetometer = options.orientation = options.barometer = options.temperatures = true;
    return options;
}

inline CsvRow csvRowOf(const bw::SensorsData& d, std::int64_t index) {
    using Location = bw::SensorsData::TemperatureData::SENSOR_LOCATION;
    constexpr double kDegPerRad = 180.0 / 3.14159265358979323846;
    CsvRow row;
    row.index = index;
    row.imuTime = static_cast<double>(d.imu.timestamp) / 1e9;
    row.magTime = static_cast<double>(d.magnetometer.timestamp) / 1e9;
    row.baroTime = static_cast<double>(d.barometer.timestamp) / 1e9;
    row.accX = d.imu.linear_acceleration.x, row.accY = d.imu.linear_acceleration.y;
    row.accZ = d.imu.linear_acceleration.z;
    row.gyroX = d.imu.angular_velocity.x, row.gyroY = d.imu.angular_velocity.y;
    row.gyroZ = d.imu.angular_velocity.z;
    row.magX = d.magnetometer.magnetic_field_uncalibrated.x;
    row.magY = d.magnetometer.magnetic_field_uncalibrated.y;
    row.magZ = d.magnetometer.magnetic_field_uncalibrated.z;
    const bw::Vector3<float> euler = d.imu.pose.getEulerAngles(true);
    row.orientX = euler.x * kDegPerRad, row.orientY = euler.y * kDegPerRad;
    row.orientZ = euler.z * kDegPerRad;
    row.pressure = d.barometer.pressure / 100.0, row.altitude = d.barometer.relative_altitude;
    row.movingState = static_cast<double>(d.camera_moving_state);
    float celsius = 0.f;
    if (d.temperature.get(Location::ONBOARD_LEFT, celsius) == bw::SUCCESS) row.tempLeft = celsius;
    if (d.temperature.get(Location::ONBOARD_RIGHT, celsius) == bw::SUCCESS) row.tempRight = celsius;
    if (d.temperature.get(Location::IMU, celsius) == bw::SUCCESS) row.tempImu = celsius;
    if (d.temperature.get(Location::BAROMETER, celsius) == bw::SUCCESS) row.tempBarometer = celsius;
    return row;
}

// Records `seconds` of the camera `config` (a stereo model) into `path`, starting after
// `settleSeconds` in which the camera settles on its table. Returns the rows written, or -1
// with `error` set. Leaves the bus empty and the clock real.
inline long recordSimulatedCamera(bw::sim::DeviceConfig config, double seconds,
                                  const RecOptions& options, const QString& path, QString& error,
                                  double settleSeconds = 2.0) {
    bw::sim::VirtualTimeScope virtualTime;
    bw::sim::Clock::setAutoAdvanceLimit(UINT64_MAX);
    if (config.serial == 0) config.serial = bw::sim::DeviceConfig::defaultSerial(config.model, 0);
    bw::sim::Bus::instance().load({config});
    long rows = -1;
    {
        bw::Camera camera;
        bw::InitParameters parameters;
        parameters.input.setFromSerialNumber(config.serial);
        CsvWriter writer;
        if (camera.open(parameters) != bw::SUCCESS) {
            error = QStringLiteral("the simulated camera does not open");
        } else if (!writer.open(path, options)) {
            error = writer.errorString();
        } else {
            const std::uint64_t start = bw::sim::Clock::nowNs();
            const auto settle = static_cast<std::uint64_t>(std::llround(settleSeconds * 1e9));
            const std::uint64_t end =
                start + settle + static_cast<std::uint64_t>(std::llround(seconds * 1e9));
            bw::SensorsData data;
            bw::Timestamp last = 0;
            rows = 0;
            for (;;) {
                if (camera.getSensorsData(data, bw::TIME_REFERENCE::CURRENT) != bw::SUCCESS) {
                    error = QStringLiteral("the simulated camera stopped answering");
                    rows = -1;
                    break;
                }
                if (data.imu.timestamp == last) continue;
                last = data.imu.timestamp;
                if (last >= end) break;
                if (last < start + settle) continue;
                if (writer.writeRow(csvRowOf(data, rows)) != CsvWriter::WriteOutcome::WRITTEN) {
                    error = writer.errorString();
                    rows = -1;
                    break;
                }
                ++rows;
            }
            writer.close();
        }
        camera.close();
    }
    bw::sim::Bus::instance().load({});
    return rows;
}
