// Shared set-up of the device tests: a virtual clock and a bus that holds exactly the cameras a
// test asks for, plus small helpers to open them.
#pragma once

#include <bw/Camera.hpp>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <cstdint>
#include <vector>

#include "VirtualTime.h"

// QCOMPARE for ERROR_CODE and MODEL values. Inside QTest, argument-dependent lookup prefers
// bw::toString (which returns const char*) to QTest's own, which does not compile; comparing
// the numbers keeps the failure output useful.
#define COMPARE_CODE(actual, expected) \
    QCOMPARE(static_cast<int>(actual), static_cast<int>(expected))

namespace simtest {

using bw::sim::Bus;
using bw::sim::Clock;
using bw::sim::DeviceConfig;

using virtualtime::kMs;
using virtualtime::kSecond;

// Virtual time from construction on, the given cameras on the bus; no cameras and real time
// again afterwards.
class SimScope {
    bw::sim::VirtualTimeScope time_;  // first, so that the bus loads on the virtual clock

public:
    explicit SimScope(const std::vector<DeviceConfig>& cameras) { Bus::instance().load(cameras); }
    ~SimScope() { Bus::instance().load({}); }
    SimScope(const SimScope&) = delete;
    SimScope& operator=(const SimScope&) = delete;

    const std::uint64_t startNs = Clock::nowNs();
};

inline DeviceConfig camera(bw::MODEL model, unsigned serial = 0, int cameraId = 0) {
    DeviceConfig config;
    config.model = model;
    config.serial = serial;
    config.cameraId = cameraId;
    return config;
}

inline bw::InitParameters bySerial(unsigned serial) {
    bw::InitParameters p;
    p.input.setFromSerialNumber(serial);
    return p;
}

inline bw::InitParameters byId(unsigned id) {
    bw::InitParameters p;
    p.input.setFromCameraID(id, bw::BUS_TYPE::GMSL, bw::CAMERA_TYPE::STEREO);
    return p;
}

inline bw::InitParametersOne monoById(unsigned id) {
    bw::InitParametersOne p;
    p.input.setFromCameraID(id, bw::BUS_TYPE::GMSL, bw::CAMERA_TYPE::MONO);
    return p;
}

}  // namespace simtest
