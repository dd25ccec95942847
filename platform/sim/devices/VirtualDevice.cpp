#include "VirtualDevice.hpp"

#include <algorithm>
#include <bw/sim/Clock.hpp>
#include <cmath>

namespace bw::sim {

namespace {

// Used only until the camera has produced a magnetometer sample; close to the field of
// central Europe.
constexpr float kFallbackEarthFieldUt = 48.f;
// What a saturated magnetometer axis reads; the viewer recognises exactly this value.
constexpr float kSaturatedFieldUt = 2048.f;

std::uint64_t offsetNs(std::uint64_t originNs, double seconds) {
    return originNs + static_cast<std::uint64_t>(std::llround(std::max(0.0, seconds) * 1e9));
}

float norm(const Vector3<float>& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

}  // namespace

DeviceState::DeviceState(const DeviceConfig& config, std::uint64_t timelineStartNs)
    : faults(config.faults), timeline(config, timelineStartNs) {}

void DeviceState::plugIn() {
    if (!plugged) {
        plugged = true;
        ++plugCount;
    }
}

void DeviceState::pullOut() {
    plugged = false;
    owner = nullptr;  // whoever had it open lost it with the cable
}

Vector3<float> DeviceState::reportedMagField(const MagSample& sample) const {
    Vector3<float> raw = sample.rawField;
    if (faults.magSaturated) {
        raw.z = kSaturatedFieldUt;  // d2 is the camera's z axis
    }
    return raw;
}

const MagCalibAssessment& DeviceState::magCalibAssessment() {
    if (assessedRevision_ != eeprom.revision) {
        const MagSample* newest = timeline.magAt(UINT64_MAX);
        const float earth = newest ? norm(newest->trueField) : kFallbackEarthFieldUt;
        assessment_ =
            assessMagCalibration(config(), eeprom, earth > 0.f ? earth : kFallbackEarthFieldUt);
        assessedRevision_ = eeprom.revision;
    }
    return assessment_;
}

VirtualDevice::VirtualDevice(const DeviceConfig& config, std::uint64_t scheduleOriginNs,
                             std::uint64_t timelineStartNs)
    : serial_(config.serial),
      model_(config.model),
      cameraId_(config.cameraId),
      state_(config, timelineStartNs) {
    pending_.push_back({offsetNs(scheduleOriginNs, config.plugAt), true});
    if (config.unplugAt) {
        pending_.push_back({offsetNs(scheduleOriginNs, *config.unplugAt), false});
    }
    // stable: an unplug scheduled at the plug time itself still follows the plug.
    std::stable_sort(pending_.begin(), pending_.end(),
                     [](const CableEvent& a, const CableEvent& b) { return a.atNs < b.atNs; });
}

VirtualDevice::Locked VirtualDevice::lock() {
    Locked locked(mutex_, state_);
    if (!pending_.empty()) {
        applyDueEvents(state_, Clock::nowNs());
    }
    return locked;
}

void VirtualDevice::applyDueEvents(DeviceState& state, std::uint64_t nowNs) {
    auto due = pending_.begin();
    for (; due != pending_.end() && due->atNs <= nowNs; ++due) {
        if (due->plugIn) {
            state.plugIn();
        } else {
            state.pullOut();
        }
    }
    pending_.erase(pending_.begin(), due);
}

}  // namespace bw::sim
