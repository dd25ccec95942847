#include <algorithm>
#include <bw/sim/Clock.hpp>
#include <condition_variable>
#include <mutex>

namespace bw::sim {
namespace {

using std::chrono::steady_clock;

struct ClockState {
    std::mutex mutex;
    std::condition_variable changed;  // virtual time moved, or the mode or limit changed
    bool isVirtual = false;
    std::uint64_t virtualNs = 0;
    std::uint64_t autoAdvanceLimitNs = 0;

    // Real time: the wall clock read once, carried on by the steady clock so that it never
    // jumps when the system time is set.
    std::uint64_t realBaseNs = 0;
    steady_clock::time_point steadyBase;

    ClockState()
        : realBaseNs(
              static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                             std::chrono::system_clock::now().time_since_epoch())
                                             .count())),
          steadyBase(steady_clock::now()) {}

    std::uint64_t realNs(steady_clock::time_point at) const {
        return realBaseNs +
               static_cast<std::uint64_t>(
                   std::chrono::duration_cast<std::chrono::nanoseconds>(at - steadyBase).count());
    }

    std::uint64_t nowLocked() const { return isVirtual ? virtualNs : realNs(steady_clock::now()); }
};

// Never destroyed: device threads may still read the clock while the process exits.
ClockState& state() {
    static ClockState* const instance = new ClockState;
    return *instance;
}

// Longest wait honoured; keeps deadline arithmetic far from overflow.
constexpr std::chrono::microseconds kLongestWait = std::chrono::hours(24 * 365);

}  // namespace

std::uint64_t Clock::nowNs() {
    ClockState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    return s.nowLocked();
}

void Clock::useRealTime() {
    ClockState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.isVirtual = false;
    s.autoAdvanceLimitNs = 0;
    s.changed.notify_all();
}

void Clock::useVirtualTime(std::uint64_t startNs) {
    ClockState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.isVirtual = true;
    s.virtualNs = startNs;
    s.autoAdvanceLimitNs = 0;
    s.changed.notify_all();
}

bool Clock::isVirtual() {
    ClockState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    return s.isVirtual;
}

void Clock::advanceTo(std::uint64_t ns) {
    ClockState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    // Real time cannot be pushed, and virtual time never runs backwards.
    if (!s.isVirtual || ns <= s.virtualNs) return;
    s.virtualNs = ns;
    s.changed.notify_all();
}

void Clock::advanceBy(std::uint64_t ns) {
    ClockState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    if (!s.isVirtual || ns == 0) return;
    s.virtualNs = s.virtualNs > UINT64_MAX - ns ? UINT64_MAX : s.virtualNs + ns;
    s.changed.notify_all();
}

void Clock::setAutoAdvanceLimit(std::uint64_t limitNs) {
    ClockState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.autoAdvanceLimitNs = limitNs;
    // A waiter may now be allowed to move time on by itself.
    s.changed.notify_all();
}

std::uint64_t Clock::autoAdvanceLimit() {
    ClockState& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    return s.autoAdvanceLimitNs;
}

namespace {

std::uint64_t waitFor(std::uint64_t targetNs, std::chrono::microseconds maxRealWait,
                      bool mayAdvance) {
    ClockState& s = state();
    const auto wait = std::clamp(maxRealWait, std::chrono::microseconds::zero(), kLongestWait);
    const steady_clock::time_point deadline = steady_clock::now() + wait;
    std::unique_lock<std::mutex> lock(s.mutex);
    for (;;) {
        const std::uint64_t now = s.nowLocked();
        if (now >= targetNs) return now;
        if (mayAdvance && s.isVirtual && targetNs <= s.autoAdvanceLimitNs) {
            s.virtualNs = targetNs;
            s.changed.notify_all();
            return targetNs;
        }
        const steady_clock::time_point wakeUp = steady_clock::now();
        if (wakeUp >= deadline) return now;
        // Virtual time only moves when someone advances it; real time reaches the target by
        // itself. Either way a change of mode or limit wakes us to look again.
        steady_clock::time_point until = deadline;
        const auto leftNs = std::chrono::duration_cast<std::chrono::nanoseconds>(deadline - wakeUp);
        if (!s.isVirtual && targetNs - now < static_cast<std::uint64_t>(leftNs.count())) {
            until = wakeUp + std::chrono::nanoseconds(targetNs - now);
        }
        s.changed.wait_until(lock, until);
    }
}

}  // namespace

std::uint64_t Clock::waitUntil(std::uint64_t targetNs, std::chrono::microseconds maxRealWait) {
    return waitFor(targetNs, maxRealWait, true);
}

std::uint64_t Clock::waitFollowing(std::uint64_t targetNs, std::chrono::microseconds maxRealWait) {
    return waitFor(targetNs, maxRealWait, false);
}

}  // namespace bw::sim
