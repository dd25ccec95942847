// sim/sdk: the camera layer's API (bw::Camera, bw::CameraOne, bw::ORYXmcu, HID listing, GPU
// memory) implemented on the simulated bus. Nothing here models a device; it only claims one
// and hands out what it measures, as the maker's library does with real hardware.
//
// What bw::Camera and bw::CameraOne have in common on the simulated bus: finding and claiming a
// device, pacing image grabs and handing out sensor records. Each session keeps its own cursor
// into the device's IMU stream, so every reader receives every sample once.
//
// Thread-safety: the grab thread, a sampling thread and the GUI may use one session at once.
// Session state sits behind the session's mutex, device state behind the device's (always taken
// in that order), and neither is held while waiting on the clock.
#pragma once

#include <bw/Camera.hpp>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "devices/VirtualDevice.hpp"

namespace bw::sim {

enum class CameraClass { Stereo, Mono };

bool isOfClass(MODEL model, CameraClass cameraClass);
BUS_TYPE busOf(MODEL model);

// Plugged devices of the class, in bus order.
std::vector<DeviceProperties> listDevices(CameraClass cameraClass);

class CameraSession {
public:
    explicit CameraSession(CameraClass cameraClass) : class_(cameraClass) {}
    ~CameraSession() { close(); }
    CameraSession(const CameraSession&) = delete;
    CameraSession& operator=(const CameraSession&) = delete;

    ERROR_CODE open(const InputType& input);
    void close();
    bool isOpen() const;

    ERROR_CODE grab();
    ERROR_CODE retrieveImage(ImageBGRA& image) const;
    ERROR_CODE sensorsData(SensorsData& data, TIME_REFERENCE reference);

    // Empty while closed.
    std::optional<CameraInformation> information(Resolution resolution) const;
    Timestamp timestamp(TIME_REFERENCE reference) const;

private:
    struct Found {
        std::shared_ptr<VirtualDevice> device;
        ERROR_CODE error = CAMERA_NOT_DETECTED;
    };
    Found find(const InputType& input) const;
    Found findFirstAvailable() const;
    Found findById(unsigned id, CAMERA_TYPE type) const;

    ERROR_CODE currentRecord(std::unique_lock<std::mutex>& sessionLock, SensorsData& data);
    ERROR_CODE imageRecord(SensorsData& data);
    const ImuSample* nextSampleFor(const SensorTimeline& timeline) const;
    void deliver(const DeviceState& state, const ImuSample& sample, SensorsData& data);
    void recordFrame(DeviceState& state, std::uint64_t nowNs);

    const CameraClass class_;
    mutable std::mutex mutex_;
    std::shared_ptr<VirtualDevice> device_;  // null while closed
    unsigned plugCount_ = 0;                 // the device's plug count at opening

    // Sensor stream: timestamp of the last IMU sample handed out, and the record it went in.
    std::uint64_t cursorNs_ = 0;
    SensorsData last_;
    bool repeatDue_ = false;  // under the repeated-timestamps fault, every other call repeats

    // Image stream.
    std::uint64_t nextFrameNs_ = 0;
    std::uint64_t lastGrabNs_ = 0;
    SensorsData atGrab_;
    float rollAtGrab_ = 0.f;
};

}  // namespace bw::sim
