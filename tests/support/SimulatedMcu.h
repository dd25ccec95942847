// The micro-controller of a simulated camera as tests reach it: opened by serial, a magnetometer
// calibration record for its EEPROM, what the EEPROM holds, the strength of the field the camera
// measures, and a tumbling camera on a virtual clock that moves only as far as a test allows.
#pragma once

#include <bw/ORYXmcu.hpp>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <cmath>
#include <memory>
#include <vector>

#include "VirtualTime.h"
#include "physics/SensorTimeline.hpp"

namespace simmcu {

using virtualtime::kMs;
using virtualtime::kSecond;

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

// The six floats of the EEPROM's magnetometer calibration, in device axes d0..d2.
struct Stored {
    float scale[3];
    float offset[3];
    int calibStored;
};

inline Stored readEeprom(unsigned serial) {
    auto mcu = openMcu(serial);
    Stored s{};
    if (!mcu || mcu->updateEepromMemory(true) != 0) return s;
    const bw::_eeprom_data& e = mcu->eeprom();
    for (int i = 0; i < 3; ++i) {
        s.scale[i] = e.mag_scale[i];
        s.offset[i] = e.mag_offset[i];
    }
    s.calibStored = e.mag_calib_stored;
    return s;
}

constexpr unsigned kTumblingSerial = 30000001;

// A camera turned in every direction, its magnetometer distorted by hard and soft iron.
inline bw::sim::DeviceConfig tumblingD(bw::MODEL model = bw::MODEL::ORYX_D,
                                       unsigned serial = kTumblingSerial) {
    bw::sim::DeviceConfig c;
    c.model = model;
    c.serial = serial;
    c.motion = bw::sim::MotionProfile::Tumbling;
    c.seed = 7;
    c.hardIronOffset = {23.f, -14.f, 9.f};
    c.softIronScale = {1.08f, 0.93f, 1.02f};
    return c;
}

// Virtual time with the given cameras; time moves only as far as a test allows. The cameras have
// been running for a moment when a test starts, as a plugged camera has: a reader on a clock that
// stands still then finds no new sample rather than no sample at all, which the grab thread would
// count as a failed read however fast or slow the test runs.
class Sim {
    bw::sim::VirtualTimeScope time_;

    static std::uint64_t plugAndRun(const std::vector<bw::sim::DeviceConfig>& cameras) {
        bw::sim::Bus::instance().load(cameras);
        bw::sim::Clock::advanceBy(kAlreadyRunningNs);
        return bw::sim::Clock::nowNs();
    }

public:
    static constexpr std::uint64_t kAlreadyRunningNs = 100'000'000ull;

    explicit Sim(const std::vector<bw::sim::DeviceConfig>& cameras)
        : start(plugAndRun(cameras)), firstSerial(cameras.empty() ? 0 : cameras[0].serial) {
        bw::sim::Clock::setAutoAdvanceLimit(start);
    }
    ~Sim() {
        bw::sim::Clock::setAutoAdvanceLimit(0);
        bw::sim::Bus::instance().load({});
    }
    Sim(const Sim&) = delete;
    Sim& operator=(const Sim&) = delete;

    // Lets readers move time forward to start + ns.
    void allowUntil(std::uint64_t ns) { bw::sim::Clock::setAutoAdvanceLimit(start + ns); }
    // Lets readers move time forward by ns from where it stands now.
    void allowAnother(std::uint64_t ns) {
        bw::sim::Clock::setAutoAdvanceLimit(bw::sim::Clock::nowNs() + ns);
    }
    // Faults of the first camera.
    void setFaults(const bw::sim::Faults& f) { bw::sim::Bus::instance().setFaults(firstSerial, f); }

    const std::uint64_t start;
    const unsigned firstSerial;
};

}  // namespace simmcu
