// The simulation's time source. Real time by default; tests switch to a virtual clock so that
// minutes of sensor data take milliseconds.
#pragma once

#include <chrono>
#include <cstdint>

namespace bw::sim {

class Clock {
public:
    // Device timestamps in ns since the Unix epoch.
    static std::uint64_t nowNs();

    // Real time: timestamps follow the system clock from process start on (monotonic).
    static void useRealTime();

    // Virtual time starting at startNs. Time stands still until advanced, either by advanceTo /
    // advanceBy or, up to the auto-advance limit, by a reader that waits for the next sample.
    static constexpr std::uint64_t kVirtualEpochNs = 1'700'000'000'000'000'000ull;
    static void useVirtualTime(std::uint64_t startNs = kVirtualEpochNs);
    static bool isVirtual();
    static void advanceTo(std::uint64_t ns);
    static void advanceBy(std::uint64_t ns);
    // Readers waiting for a sample may move virtual time forward by themselves up to limitNs
    // (absolute). 0 forbids it; UINT64_MAX lets the virtual clock run freely.
    static void setAutoAdvanceLimit(std::uint64_t limitNs);
    static std::uint64_t autoAdvanceLimit();

    // Blocks until the clock reads at least targetNs or maxRealWait has passed, whichever comes
    // first, and returns the clock's reading then. In virtual time it jumps to targetNs at once
    // when the auto-advance limit allows, otherwise it waits for another thread to advance.
    static std::uint64_t waitUntil(std::uint64_t targetNs, std::chrono::microseconds maxRealWait);

    // As waitUntil, but never moves virtual time itself: for streams that follow the clock
    // rather than drive it (camera frames), so that they cannot run ahead of the sensor reader.
    static std::uint64_t waitFollowing(std::uint64_t targetNs,
                                       std::chrono::microseconds maxRealWait);
};

// Switches to virtual time for a scope and back to real time after it (for tests).
class VirtualTimeScope {
public:
    explicit VirtualTimeScope(std::uint64_t startNs = Clock::kVirtualEpochNs) {
        Clock::useVirtualTime(startNs);
    }
    ~VirtualTimeScope() { Clock::useRealTime(); }
    VirtualTimeScope(const VirtualTimeScope&) = delete;
    VirtualTimeScope& operator=(const VirtualTimeScope&) = delete;
};

}  // namespace bw::sim
