// The micro-controller of a simulated camera as tests reach it: opened by serial, a magnetometer
// calibration record for its EEPROM, and the strength of the field the camera measures.
#pragma once

#include <bw/ORYXmcu.hpp>
#include <bw/sim/Clock.hpp>
#include <cmath>
#include <memory>

#include "physics/SensorTimeline.hpp"

namespace simmcu {

// The opened micro-controller, or null; `result` gets the open's return code.
inline std::unique_ptr<bw::ORYXmcu> openMcu(unsigned serial, int* result = nullptr) {
    auto mcu = std::make_unique<bw::ORYXmcu>(false, bw::ORYX_USB_VENDOR_ID,
                                             bw::MODEL(serial / 10'000'000), false, "");
    const int r = mcu->open(serial, false, bw::IMU_ODR_400HZ, nullptr, nullptr, true, false);
    if (result != nullptr) *result = r;
    return r == 0 ? std::move(mcu) : nullptr;
}

inline bw::_mag_calib_data magCalibration(const bw::Vector3<float>& scale,
                                          const bw::Vector3<float>& offset) {
    bw::_mag_calib_data c;
    c.scale_d0 = scale.x;
    c.scale_d1 = scale.y;
    c.scale_d2 = scale.z;
    c.offset_d0 = offset.x;
    c.offset_d1 = offset.y;
    c.offset_d2 = offset.z;
    return c;
}

// Strength of the field the simulated camera measures, from its true field.
inline double earthFieldUt(const bw::sim::DeviceConfig& config) {
    bw::sim::SensorTimeline timeline(config, bw::sim::Clock::kVirtualEpochNs);
    timeline.advanceTo(bw::sim::Clock::kVirtualEpochNs + 100'000'000ull);
    const auto f = timeline.magAt(UINT64_MAX)->trueField;
    return std::sqrt(double(f.x) * f.x + double(f.y) * f.y + double(f.z) * f.z);
}

}  // namespace simmcu
