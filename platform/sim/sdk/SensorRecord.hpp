// The camera API's sensor record of one IMU sample, assembled from a device's sample streams,
// its stored magnetometer calibration and its faults.
#pragma once

#include <bw/sensors.hpp>

#include "devices/VirtualDevice.hpp"

namespace bw::sim {

// Replaces every field of out. The magnetometer and barometer values are those of their newest
// samples stamped at or before the IMU sample.
void fillSensorsRecord(const DeviceState& state, const ImuSample& imu, SensorsData& out);

}  // namespace bw::sim
