// The byte records of the simulated sensor micro-controller, built from a device's samples:
// raw counts, device ticks, the fused pose and the tilt-compensated magnetic heading.
#pragma once

#include <bw/ORYXmcu.hpp>
#include <cstdint>

#include "VirtualDevice.hpp"

namespace bw::sim {

// Raw scales of the simulated IMU: +/-16 g and +/-2000 deg/s full scale on 16 bits, as the
// micro-controller configures its inertial chip.
constexpr double kAccCountsPerMs2 = 2048.0 / 9.80665;
constexpr double kGyroCountsPerDegS = 16.4;

// Rounded and clamped to the int16 range, as the chip saturates.
std::int16_t toCounts(double value, double countsPerUnit);
std::uint64_t toTicks(std::uint64_t ns);

// The IMU, barometer and temperature fields of a reader record (not the magnetometer's).
void fillReaderImu(const DeviceState& state, const ImuSample& imu, _imu_reader_data& record);
// The magnetometer counts of a reader record, device axes d0..d2.
void fillReaderMag(const DeviceState& state, const MagSample& mag, _imu_reader_data& record);

// The pose record of an IMU sample, with the magnetometer state at that time.
_imu_pose_data makePoseRecord(DeviceState& state, const ImuSample& imu);

// Heading of the camera's forward (optical, +x) axis from magnetic north, in radians in
// [-pi, pi], positive towards east (clockwise seen from above). Both vectors are in the
// magnetometer's device axes; gravity points down. 0 when either is degenerate.
float magHeading(const Vector3<float>& magDevice, const Vector3<float>& gravityDevice);

}  // namespace bw::sim
