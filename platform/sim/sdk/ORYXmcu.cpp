// bw::ORYXmcu on the simulated bus: the sensor micro-controller of an ORYX_B/C/D camera. It
// shares the device (and so the EEPROM and the sample streams) with any camera object, but
// keeps its own cursors: a reader polling fast sees every magnetometer sample once.
#include <bw/ORYXmcu.hpp>
#include <bw/sim/Clock.hpp>
#include <chrono>
#include <mutex>

#include "devices/Bus.hpp"
#include "devices/McuRecords.hpp"

namespace bw {

namespace {

// Longest real-time wait of a reader that found nothing new, so callers do not spin a core.
constexpr std::chrono::microseconds kReaderWait{2'000};
constexpr std::uint8_t kWriteMagCalibCommand = 0x4D;
constexpr std::uint16_t kEepromLayoutVersion = 1;
// How far a deliberately bad EEPROM read is off in its first float.
constexpr float kBadReadError = 0.5f;

bool hasMicroController(MODEL model) {
    return model == MODEL::ORYX_B || model == MODEL::ORYX_C || model == MODEL::ORYX_D;
}

}  // namespace

struct ORYXmcu::Impl {
    Impl(unsigned short vendor, MODEL model_) : vendorId(vendor), model(model_) {}

    const unsigned short vendorId;
    const MODEL model;

    // Guards everything below; never held while waiting on the clock. Taken before a device's.
    mutable std::mutex mutex;
    std::shared_ptr<sim::VirtualDevice> device;  // null while closed
    unsigned plugCount = 0;
    bool magEnabled = false;
    bool capturing = false;
    std::uint64_t imuCursorNs = 0;
    std::uint64_t magCursorNs = 0;
    std::uint8_t sync = 0;
    // Packed, so only the object's own alignment keeps its floats aligned for callers that
    // bind references to them.
    alignas(8) _eeprom_data image{};
    bool imageRead = false;

    bool connected(const sim::DeviceState& state) const { return state.connectedSince(plugCount); }

    // Fills record from the newest samples; true when it carries something the reader has
    // not had (a magnetometer sample, or an IMU sample on cameras without one).
    bool fillReader(sim::DeviceState& state, _imu_reader_data& record);
};

bool ORYXmcu::Impl::fillReader(sim::DeviceState& state, _imu_reader_data& record) {
    record = _imu_reader_data{};
    record.valid = 1;
    record.sync = sync++;
    state.timeline.advanceTo(sim::Clock::nowNs());
    const sim::ImuSample* imu = state.timeline.newestImu();
    if (!imu) {
        return false;  // imu_update 0: nothing measured yet
    }
    sim::fillReaderImu(state, *imu, record);
    const bool newImu = imu->timestampNs > imuCursorNs;
    record.imu_update = newImu ? 2 : 1;
    imuCursorNs = imu->timestampNs;
    if (!magEnabled || state.faults.magUnavailable) {
        return newImu;
    }
    // Oldest sample not yet handed out; its own time stamps the record, so that the reader
    // sees the magnetometer's true spacing even when it catches up on a backlog.
    if (const sim::MagSample* mag = state.timeline.firstMagAfter(magCursorNs)) {
        sim::fillReaderMag(state, *mag, record);
        record.mag_update = 2;
        record.timestamp = sim::toTicks(mag->timestampNs);
        magCursorNs = mag->timestampNs;
        return true;
    }
    if (const sim::MagSample* mag = state.timeline.magAt(magCursorNs)) {
        sim::fillReaderMag(state, *mag, record);
    }
    record.mag_update = 1;
    return false;
}

ORYXmcu::ORYXmcu(bool, unsigned short vendorId, MODEL model, bool, std::string)
    : impl_(std::make_unique<Impl>(vendorId, model)) {}

ORYXmcu::~ORYXmcu() = default;

int ORYXmcu::open(unsigned int serial, bool, _imu_odr, float*, float*, bool enableMagnetometer,
                  bool) {
    close();
    // The library looks for the product id of its model; another model is another device.
    const auto device = sim::BusAccess::find(serial);
    if (impl_->vendorId != ORYX_USB_VENDOR_ID || !hasMicroController(impl_->model) || !device ||
        device->model() != impl_->model) {
        return MCU_NOT_FOUND;
    }
    std::lock_guard<std::mutex> lock(impl_->mutex);
    auto state = device->lock();
    if (!state->plugged) {
        return MCU_NOT_FOUND;
    }
    if (state->faults.mcuOpenFails) {
        return MCU_OPEN_FAILED;
    }
    impl_->device = device;
    impl_->plugCount = state->plugCount;
    impl_->magEnabled = enableMagnetometer && sim::sensorsOf(device->model()).magnetometer;
    impl_->capturing = false;
    impl_->imageRead = false;
    return MCU_OK;
}

void ORYXmcu::close() {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->capturing = false;
    impl_->device.reset();
}

bool ORYXmcu::isOpen() const {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    return impl_->device != nullptr;
}

int ORYXmcu::startCapture(float) {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    if (!impl_->device) {
        return MCU_NOT_OPEN;
    }
    auto state = impl_->device->lock();
    if (!impl_->connected(*state)) {
        return MCU_DISCONNECTED;
    }
    // A capture starts with the samples measured from now on.
    const std::uint64_t now = sim::Clock::nowNs();
    state->timeline.advanceTo(now);
    impl_->imuCursorNs = now;
    impl_->magCursorNs = now;
    impl_->capturing = true;
    return MCU_OK;
}

void ORYXmcu::stopCapture() {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->capturing = false;
}

bool ORYXmcu::isCapturing() const {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    return impl_->capturing;
}

_imu_reader_data ORYXmcu::getIMUReaderData() {
    _imu_reader_data record{};  // valid 0 unless filled
    std::unique_lock<std::mutex> lock(impl_->mutex);
    if (!impl_->device || !impl_->capturing) {
        return record;
    }
    const auto device = impl_->device;
    std::uint64_t due = 0;
    {
        auto state = device->lock();
        if (!impl_->connected(*state) || state->faults.mcuReadFails) {
            return record;
        }
        if (impl_->fillReader(*state, record)) {
            return record;
        }
        due = impl_->magEnabled ? state->timeline.nextMagDueNs() : state->timeline.nextImuDueNs();
    }

    // Nothing new: wait briefly for the next sample rather than let the caller spin.
    lock.unlock();
    sim::Clock::waitUntil(due, kReaderWait);
    lock.lock();
    record = _imu_reader_data{};
    if (impl_->device != device || !impl_->capturing) {
        return record;
    }
    auto state = device->lock();
    if (!impl_->connected(*state) || state->faults.mcuReadFails) {
        return record;
    }
    impl_->fillReader(*state, record);
    return record;
}

_imu_pose_data ORYXmcu::getIMUPose(int) {
    _imu_pose_data pose{};
    pose.mag_calib_status = sim::MAG_CALIB_NONE;  // never claim a calibration we cannot see
    std::lock_guard<std::mutex> lock(impl_->mutex);
    if (!impl_->device) {
        return pose;
    }
    auto state = impl_->device->lock();
    if (!impl_->connected(*state) || state->faults.mcuReadFails) {
        return pose;
    }
    state->timeline.advanceTo(sim::Clock::nowNs());
    if (const sim::ImuSample* imu = state->timeline.newestImu()) {
        pose = sim::makePoseRecord(*state, *imu);
    }
    return pose;
}

float ORYXmcu::calcMagHeading(Vector3<float> magField, Vector3<float> gravity) const {
    return sim::magHeading(magField, gravity);
}

int ORYXmcu::updateEepromMemory(bool forceRead) {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    if (!impl_->device) {
        return MCU_NOT_OPEN;
    }
    auto state = impl_->device->lock();
    if (!impl_->connected(*state)) {
        return MCU_DISCONNECTED;
    }
    if (impl_->imageRead && !forceRead) {
        return MCU_OK;
    }
    _eeprom_data image{};
    image.layout_version = kEepromLayoutVersion;
    image.serial_number = impl_->device->serial();
    image.model = static_cast<std::uint8_t>(impl_->device->model());
    image.mag_calib_stored = state->eeprom.magCalibStored ? 1 : 0;
    for (int i = 0; i < 3; ++i) {
        image.mag_scale[i] = state->eeprom.magScale[i];
        image.mag_offset[i] = state->eeprom.magOffset[i];
    }
    if (state->faults.eepromBadReads > 0) {
        // A garbled transfer: the call succeeds, the data is wrong.
        --state->faults.eepromBadReads;
        image.mag_scale[0] += kBadReadError;
    }
    impl_->image = image;
    impl_->imageRead = true;
    return MCU_OK;
}

const _eeprom_data& ORYXmcu::eeprom() const { return impl_->image; }

int ORYXmcu::writeMagCalibInEEprom(_mag_calib_data& data) {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    if (!impl_->device) {
        return MCU_NOT_OPEN;
    }
    auto state = impl_->device->lock();
    if (!impl_->connected(*state)) {
        return MCU_DISCONNECTED;
    }
    if (state->faults.eepromWriteFails) {
        return MCU_IO_ERROR;
    }
    data.command = kWriteMagCalibCommand;
    state->eeprom.storeMagCalibration({data.scale_d0, data.scale_d1, data.scale_d2},
                                      {data.offset_d0, data.offset_d1, data.offset_d2});
    return MCU_OK;
}

}  // namespace bw
