#include "CameraSession.hpp"

#include <algorithm>
#include <bw/gpu.hpp>
#include <bw/sim/Clock.hpp>
#include <chrono>
#include <string>

#include "devices/Bus.hpp"
#include "SensorRecord.hpp"
#include "devices/SyntheticImage.hpp"

namespace bw::sim {

namespace {

constexpr std::uint64_t kFramePeriodNs = 1'000'000'000ull / 30;
constexpr float kFramesPerSecond = 30.f;
// Real-time bounds of the waits, so that a virtual clock nobody advances never hangs a caller.
constexpr std::chrono::microseconds kFrameWait{40'000};
constexpr std::chrono::microseconds kImuWait{2'500};  // one IMU period

}  // namespace

bool isOfClass(MODEL model, CameraClass cameraClass) {
    const bool mono = model == MODEL::ORYX_SOLO_A || model == MODEL::ORYX_SOLO_B;
    return mono == (cameraClass == CameraClass::Mono);
}

BUS_TYPE busOf(MODEL model) {
    switch (model) {
        case MODEL::ORYX_E:
        case MODEL::ORYX_F:
        case MODEL::ORYX_SOLO_A:
        case MODEL::ORYX_SOLO_B:
            return BUS_TYPE::GMSL;
        default:
            return BUS_TYPE::USB;
    }
}

std::vector<DeviceProperties> listDevices(CameraClass cameraClass) {
    std::vector<DeviceProperties> out;
    for (const auto& device : BusAccess::devices()) {
        if (!isOfClass(device->model(), cameraClass)) {
            continue;
        }
        const auto state = device->lock();
        if (!state->plugged) {
            continue;
        }
        DeviceProperties p;
        p.camera_state = state->owner ? CAMERA_STATE::NOT_AVAILABLE : CAMERA_STATE::AVAILABLE;
        p.id = device->cameraId();
        const std::string& recording = state->config().recording;
        p.path = recording.empty() ? "/dev/video" + std::to_string(2 * device->cameraId())
                                   : recording;
        p.camera_model = device->model();
        p.serial_number = device->serial();
        p.bus_type = busOf(device->model());
        out.push_back(p);
    }
    return out;
}

// ---- Opening ----------------------------------------------------------------------------------

CameraSession::Found CameraSession::find(const InputType& input) const {
    switch (input.source()) {
        case InputType::SOURCE::SERIAL_NUMBER: {
            auto device = BusAccess::find(input.serialNumber());
            // A camera that replays a recording opens from its file only.
            if (device && isOfClass(device->model(), class_) &&
                device->lock()->config().recording.empty()) {
                return {device, SUCCESS};
            }
            return {};
        }
        case InputType::SOURCE::CAMERA_ID:
            return findById(input.cameraId(), input.cameraType());
        case InputType::SOURCE::FILE:
            return {nullptr, INVALID_RECORDING_FILE};
        case InputType::SOURCE::DEFAULT:
            break;
    }
    return findFirstAvailable();
}

CameraSession::Found CameraSession::findFirstAvailable() const {
    Found found;
    for (const auto& device : BusAccess::devices()) {
        if (!isOfClass(device->model(), class_)) {
            continue;
        }
        const auto state = device->lock();
        if (state->plugged && !state->owner) {
            return {device, SUCCESS};
        }
        if (state->plugged) {
            found.error = CAMERA_ALREADY_IN_USE;  // there is one, but it is taken
        }
    }
    return found;
}

CameraSession::Found CameraSession::findById(unsigned id, CAMERA_TYPE type) const {
    const CAMERA_TYPE ours = class_ == CameraClass::Mono ? CAMERA_TYPE::MONO : CAMERA_TYPE::STEREO;
    if (type != ours) {
        return {};
    }
    for (const auto& device : BusAccess::devices()) {
        if (isOfClass(device->model(), class_) && device->cameraId() == static_cast<int>(id) &&
            device->lock()->plugged) {
            return {device, SUCCESS};
        }
    }
    return {};
}

ERROR_CODE CameraSession::open(const InputType& input) {
    close();
    const Found found = find(input);
    if (!found.device || found.error != SUCCESS) {
        return found.error;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    auto state = found.device->lock();
    if (!state->plugged) {
        return CAMERA_NOT_DETECTED;
    }
    if (state->owner) {
        return CAMERA_ALREADY_IN_USE;
    }
    if (state->faults.openFails) {
        return FAILURE;
    }
    state->owner = this;
    plugCount_ = state->plugCount;
    if (state->faults.gpuMemoryFails) {
        failNextGpuContextActivation();
    }

    // Samples from before the opening belong to nobody; the first record is the next sample.
    const std::uint64_t now = Clock::nowNs();
    state->timeline.advanceTo(now);
    cursorNs_ = now;
    last_ = SensorsData();
    repeatDue_ = false;
    nextFrameNs_ = now;
    lastGrabNs_ = 0;
    atGrab_ = SensorsData();
    rollAtGrab_ = 0.f;
    device_ = found.device;
    return SUCCESS;
}

void CameraSession::close() {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!device_) {
        return;
    }
    auto state = device_->lock();
    if (state->owner == this) {
        state->owner = nullptr;
    }
    device_.reset();
}

bool CameraSession::isOpen() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return device_ != nullptr;
}

std::optional<CameraInformation> CameraSession::information(Resolution resolution) const {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!device_) {
        return std::nullopt;
    }
    const DeviceConfig config = device_->lock()->config();
    const SensorSet sensors = sensorsOf(config.model);
    CameraInformation info;
    info.serial_number = config.serial;
    info.camera_model = config.model;
    info.bus_type = busOf(config.model);
    info.camera_configuration.resolution = resolution.area() > 0 ? resolution : config.resolution;
    info.camera_configuration.fps = kFramesPerSecond;
    info.camera_configuration.firmware_version = config.cameraFirmware;
    info.sensors_configuration.firmware_version = config.sensorFirmware;
    info.sensors_configuration.has_magnetometer = sensors.magnetometer;
    info.sensors_configuration.has_barometer = sensors.barometer;
    info.sensors_configuration.has_temperature_sensors = sensors.onboardTemperatures;
    return info;
}

// ---- Images -----------------------------------------------------------------------------------

ERROR_CODE CameraSession::grab() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!device_) {
        return CAMERA_NOT_INITIALIZED;
    }
    const auto device = device_;
    const std::uint64_t due = nextFrameNs_;
    if (!device->lock()->connectedSince(plugCount_)) {
        return CAMERA_NOT_DETECTED;
    }
    lock.unlock();
    // Frames follow the clock; in virtual time the sensor reader drives it.
    const std::uint64_t now = Clock::waitFollowing(due, kFrameWait);
    lock.lock();
    if (device_ != device) {
        return CAMERA_NOT_INITIALIZED;  // closed while waiting
    }
    auto state = device->lock();
    if (!state->connectedSince(plugCount_)) {
        return CAMERA_NOT_DETECTED;
    }
    if (state->faults.grabFails) {
        return FAILURE;
    }
    // A virtual clock that nobody advanced: no new frame yet, the last one stays.
    if (now >= due) {
        recordFrame(*state, now);
    }
    return SUCCESS;
}

void CameraSession::recordFrame(DeviceState& state, std::uint64_t nowNs) {
    state.timeline.advanceTo(nowNs);
    lastGrabNs_ = nowNs;
    // Keep the 30 Hz grid, but a caller that fell behind restarts it instead of bursting.
    nextFrameNs_ = std::max(nextFrameNs_ + kFramePeriodNs, nowNs);
    if (const ImuSample* newest = state.timeline.newestImu()) {
        fillSensorsRecord(state, *newest, atGrab_);
        rollAtGrab_ = Rotation(imageFromCameraPose(newest->pose)).getEulerAngles().z;
    }
}

ERROR_CODE CameraSession::retrieveImage(ImageBGRA& image) const {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!device_) {
        return CAMERA_NOT_INITIALIZED;
    }
    image =
        makeSyntheticImage(device_->lock()->config().resolution, rollAtGrab_, device_->serial());
    return SUCCESS;
}

Timestamp CameraSession::timestamp(TIME_REFERENCE reference) const {
    if (reference == TIME_REFERENCE::CURRENT) {
        return Clock::nowNs();
    }
    std::lock_guard<std::mutex> lock(mutex_);
    return lastGrabNs_;
}

// ---- Sensor records ---------------------------------------------------------------------------

ERROR_CODE CameraSession::sensorsData(SensorsData& data, TIME_REFERENCE reference) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!device_) {
        return CAMERA_NOT_INITIALIZED;
    }
    return reference == TIME_REFERENCE::IMAGE ? imageRecord(data) : currentRecord(lock, data);
}

ERROR_CODE CameraSession::imageRecord(SensorsData& data) {
    auto state = device_->lock();
    if (!state->connectedSince(plugCount_)) {
        return CAMERA_NOT_DETECTED;
    }
    if (lastGrabNs_ != 0) {
        data = atGrab_;
        return SUCCESS;
    }
    // Nothing grabbed yet: the newest sample, without touching the reader's cursor.
    state->timeline.advanceTo(Clock::nowNs());
    if (const ImuSample* newest = state->timeline.newestImu()) {
        fillSensorsRecord(*state, *newest, data);
    } else {
        data = SensorsData();
    }
    return SUCCESS;
}

// The oldest sample the reader has not had, but never one more than a second older than the
// newest: a reader that stalled longer loses the excess, as a device FIFO would.
const ImuSample* CameraSession::nextSampleFor(const SensorTimeline& timeline) const {
    const ImuSample* newest = timeline.newestImu();
    if (!newest || newest->timestampNs <= cursorNs_) {
        return nullptr;
    }
    const std::uint64_t t = newest->timestampNs;
    const std::uint64_t horizon =
        t > SensorTimeline::kHistoryNs ? t - SensorTimeline::kHistoryNs : 0;
    return timeline.firstImuAfter(std::max(cursorNs_, horizon));
}

void CameraSession::deliver(const DeviceState& state, const ImuSample& sample, SensorsData& data) {
    fillSensorsRecord(state, sample, last_);
    cursorNs_ = sample.timestampNs;
    data = last_;
}

ERROR_CODE CameraSession::currentRecord(std::unique_lock<std::mutex>& lock, SensorsData& data) {
    const auto device = device_;
    std::uint64_t due = 0;
    {
        auto state = device->lock();
        if (!state->connectedSince(plugCount_)) {
            return CAMERA_NOT_DETECTED;
        }
        if (state->faults.repeatedImuTimestamps) {
            const bool repeat = repeatDue_;
            repeatDue_ = !repeat;
            if (repeat) {
                data = last_;  // the faulty firmware sends the previous record again
                return SUCCESS;
            }
        }
        state->timeline.advanceTo(Clock::nowNs());
        if (const ImuSample* sample = nextSampleFor(state->timeline)) {
            deliver(*state, *sample, data);
            return SUCCESS;
        }
        due = state->timeline.nextImuDueNs();
    }

    // Up to date: wait for the next sample instead of letting the caller spin.
    lock.unlock();
    Clock::waitUntil(due, kImuWait);
    lock.lock();
    if (device_ != device) {
        return CAMERA_NOT_INITIALIZED;  // closed while waiting
    }
    auto state = device->lock();
    if (!state->connectedSince(plugCount_)) {
        return CAMERA_NOT_DETECTED;
    }
    state->timeline.advanceTo(Clock::nowNs());
    if (const ImuSample* sample = nextSampleFor(state->timeline)) {
        deliver(*state, *sample, data);
    } else {
        data = last_;  // still nothing new: the same record, which callers recognise and skip
    }
    return SUCCESS;
}

}  // namespace bw::sim
