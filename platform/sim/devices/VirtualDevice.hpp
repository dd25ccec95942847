// sim/devices: the virtual cameras on their bus, as the SDK layer finds them: each device's
// description and faults, its sensor micro-controller with its records and EEPROM, its cable,
// the scenario text that plugs them in, and recordings that replay as cameras.
//
// One simulated camera as the bus holds it: its description, its sample streams, its EEPROM,
// its faults and its cable. Camera, CameraOne and ORYXmcu objects on different threads share a
// device, so everything that changes lives in DeviceState behind the device's mutex, reached
// only through lock().
#pragma once

#include <bw/sim/DeviceConfig.hpp>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "Eeprom.hpp"
#include "EepromCalibQuality.hpp"
#include "physics/SensorTimeline.hpp"

namespace bw::sim {

struct DeviceState {
    DeviceState(const DeviceConfig& config, std::uint64_t timelineStartNs);

    const DeviceConfig& config() const { return timeline.config(); }

    // Cable. plugCount grows with every plug-in; a session remembers it at opening, so one
    // opened before an unplug stays dead after the replug and has to be reopened.
    bool plugged = false;
    unsigned plugCount = 0;
    bool connectedSince(unsigned sessionPlugCount) const {
        return plugged && plugCount == sessionPlugCount;
    }
    void plugIn();
    void pullOut();

    // The camera object (Camera or CameraOne) that has the device open, if any.
    const void* owner = nullptr;

    Faults faults;
    bool hidProductIdZero = false;
    SensorTimeline timeline;
    EepromContents eeprom;

    // The field the magnetometer reports for a sample (device axes, µT), faults included.
    Vector3<float> reportedMagField(const MagSample& sample) const;

    // Status of the stored magnetometer calibration, recomputed only after an EEPROM write.
    const MagCalibAssessment& magCalibAssessment();

private:
    std::optional<unsigned> assessedRevision_;
    MagCalibAssessment assessment_;
};

class VirtualDevice {
public:
    // scheduleOriginNs: the clock reading that plugAt/unplugAt count from (the bus load).
    VirtualDevice(const DeviceConfig& config, std::uint64_t scheduleOriginNs,
                  std::uint64_t timelineStartNs);
    VirtualDevice(const VirtualDevice&) = delete;
    VirtualDevice& operator=(const VirtualDevice&) = delete;

    // Identity, fixed for the device's life; may be read without the lock.
    unsigned serial() const { return serial_; }
    MODEL model() const { return model_; }
    int cameraId() const { return cameraId_; }

    // Holds the device's mutex for its lifetime.
    class Locked {
    public:
        Locked(std::mutex& mutex, DeviceState& state) : lock_(mutex), state_(&state) {}
        DeviceState* operator->() const { return state_; }
        DeviceState& operator*() const { return *state_; }

    private:
        std::unique_lock<std::mutex> lock_;
        DeviceState* state_;
    };

    // Locks the device and first brings its cable up to date with the plug schedule.
    Locked lock();

private:
    struct CableEvent {
        std::uint64_t atNs;
        bool plugIn;
    };
    void applyDueEvents(DeviceState& state, std::uint64_t nowNs);

    const unsigned serial_;
    const MODEL model_;
    const int cameraId_;
    std::mutex mutex_;
    std::vector<CableEvent> pending_;  // in time order, guarded by mutex_
    DeviceState state_;
};

}  // namespace bw::sim
