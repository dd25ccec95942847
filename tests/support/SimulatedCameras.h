// Simulated cameras for window tests: which cameras are plugged, and a virtual clock that runs
// a hundred times faster than the wall clock, paced so that the sampling thread cannot race
// through hours of data.
#pragma once

#include <QTimer>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <vector>

inline bw::sim::DeviceConfig simulatedCamera(bw::MODEL model, int index = 0) {
    bw::sim::DeviceConfig config;
    config.model = model;
    config.serial = bw::sim::DeviceConfig::defaultSerial(model, index);
    config.cameraId = index;
    return config;
}

class PacedVirtualTime : public QObject {
public:
    explicit PacedVirtualTime(const std::vector<bw::sim::DeviceConfig>& cameras,
                              std::uint64_t virtualNsPerTick = 1'000'000'000ull) {
        bw::sim::Clock::useVirtualTime();
        bw::sim::Bus::instance().load(cameras);
        connect(&tick_, &QTimer::timeout, this, [virtualNsPerTick] {
            const std::uint64_t limit = bw::sim::Clock::autoAdvanceLimit();
            const std::uint64_t now = bw::sim::Clock::nowNs();
            // Readers drive the clock up to the limit; the limit runs ahead of them.
            if (limit < now + virtualNsPerTick)
                bw::sim::Clock::setAutoAdvanceLimit(std::max(limit, now) + virtualNsPerTick);
        });
        tick_.start(10);
    }
    ~PacedVirtualTime() override {
        tick_.stop();
        bw::sim::Clock::useRealTime();
    }

    // Virtual time stops within a tick's worth: readers still reach the limit, no further.
    void pause() { tick_.stop(); }

private:
    QTimer tick_;
};
