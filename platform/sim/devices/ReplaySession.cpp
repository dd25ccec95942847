#include "ReplaySession.hpp"

#include <bw/sim/Clock.hpp>
#include <bw/sim/DeviceConfig.hpp>
#include <chrono>
#include <cmath>
#include <limits>
#include <string>

#include "RecordingName.h"
#include "ReplayRecord.hpp"
#include "SyntheticImage.hpp"

namespace bw::sim {

namespace {

using recording::Column;

constexpr std::uint64_t kHoldPeriodNs = 1'000'000'000ull / 30;  // a held frame, at image rate
constexpr std::chrono::microseconds kFrameWait{40'000};
constexpr std::chrono::microseconds kReaderWait{2'500};
// A reader that falls this far behind loses the oldest rows, as from a device FIFO.
constexpr std::size_t kMostUnreadRows = 16'384;
// Behind the recorded pace by more than this (a slow machine, a debugger), playback goes on from
// where it is instead of rushing to catch up.
constexpr std::uint64_t kMostLagNs = 250'000'000;

// The first model, stereo ones first, that carries every sensor group the file holds. The first
// ORYX has no IMU, which every recording needs.
MODEL modelWithSensorsOf(const recording::RecordingFile& file) {
    for (const MODEL model : kModels) {
        if (model == MODEL::ORYX) continue;
        const SensorSet sensors = sensorsOf(model);
        if ((sensors.magnetometer || !file.has(Column::MAG_X)) &&
            (sensors.barometer || !file.has(Column::PRESSURE)) &&
            (sensors.onboardTemperatures || !file.has(Column::TEMP_LEFT)))
            return model;
    }
    return MODEL::ORYX_D;
}

}  // namespace

std::unique_ptr<ReplaySession> ReplaySession::open(const std::string& path,
                                                   recording::Problem& problem) {
    std::unique_ptr<recording::RecordingFile> file = recording::RecordingFile::open(path, problem);
    if (!file) return nullptr;
    // Frames are counted in int, as the camera API's replay position is.
    if (file->rowCount() > std::numeric_limits<int>::max()) {
        problem = {0, "The recording has " + std::to_string(file->rowCount()) +
                          " rows; a replay holds at most " +
                          std::to_string(std::numeric_limits<int>::max()) + "."};
        return nullptr;
    }
    return std::unique_ptr<ReplaySession>(new ReplaySession(std::move(file)));
}

ReplaySession::ReplaySession(std::unique_ptr<recording::RecordingFile> file)
    : file_(std::move(file)), frameCount_(static_cast<int>(file_->rowCount())) {
    model_ = modelWithSensorsOf(*file_);
    serial_ = DeviceConfig::defaultSerial(model_, 0);
    if (const auto named = recording::cameraNamedIn(file_->path())) {
        model_ = modelNamed(named->model).value_or(model_);
        serial_ = named->serial;
    }
    anchorAt(file_->firstImuTime(), Clock::nowNs());
}

void ReplaySession::anchorAt(double rowSeconds, std::uint64_t clockNs) {
    anchorSeconds_ = rowSeconds;
    anchorClockNs_ = clockNs;
}

std::uint64_t ReplaySession::dueNs(double rowSeconds) const {
    const double offsetNs = (rowSeconds - anchorSeconds_) * 1e9 / speed_;
    return anchorClockNs_ + static_cast<std::uint64_t>(std::max(0.0, offsetNs));
}

bool ReplaySession::readFrame(int frame, SensorsData& record) {
    // The reader looks at the next frame before the grab takes it: read it once.
    if (frame != cachedFrame_) {
        recording::Row row;
        if (!file_->read(frame, row)) return false;
        fillReplayedRecord(*file_, row, cachedRecord_);
        cachedFrame_ = frame;
    }
    record = cachedRecord_;
    return true;
}

ERROR_CODE ReplaySession::grab() {
    std::unique_lock<std::mutex> lock(mutex_);
    const int frame = position_;
    if (frame >= frameCount_) return END_OF_RECORDING_FILE;
    if (frame == current_) {
        // Held: the same frame again, at image rate, and the pace starts again from it.
        const std::uint64_t due = Clock::nowNs() + kHoldPeriodNs;
        lock.unlock();
        const std::uint64_t now = Clock::waitFollowing(due, kFrameWait);
        lock.lock();
        anchorAt(currentSeconds_, now);
        if (position_ == frame) position_ = frame + 1;
        return SUCCESS;
    }
    SensorsData record;
    if (!readFrame(frame, record)) return INVALID_RECORDING_FILE;
    const double seconds = static_cast<double>(record.imu.timestamp) / 1e9;
    const std::uint64_t due = dueNs(seconds);
    lock.unlock();
    const std::uint64_t now = Clock::waitFollowing(due, kFrameWait);
    lock.lock();
    if (now < due || position_ != frame) return SUCCESS;  // not due yet, or sought meanwhile
    if (now - due > kMostLagNs) anchorAt(seconds, now);
    if (current_ >= 0 && frame == current_ + 1 && currentRecord_.imu.timestamp != 0) {
        const double interval = static_cast<double>(record.imu.timestamp) -
                                static_cast<double>(currentRecord_.imu.timestamp);
        if (interval > 0.0) record.imu.effective_rate = static_cast<float>(1e9 / interval);
    }
    current_ = frame;
    currentRecord_ = record;
    currentSeconds_ = seconds;
    position_ = frame + 1;
    if (unread_.size() == kMostUnreadRows) unread_.pop_front();
    unread_.push_back(record);
    lock.unlock();
    grabbed_.notify_all();
    return SUCCESS;
}

ERROR_CODE ReplaySession::retrieveImage(ImageBGRA& image) const {
    std::lock_guard<std::mutex> lock(mutex_);
    const float roll = currentRecord_.imu.pose.getEulerAngles(true).z;
    image = makeSyntheticImage(DeviceConfig().resolution, roll, serial_);
    return SUCCESS;
}

ERROR_CODE ReplaySession::sensorsData(SensorsData& data, TIME_REFERENCE reference) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (reference == TIME_REFERENCE::IMAGE) {
        data = currentRecord_;
        return SUCCESS;
    }
    if (unread_.empty()) {
        // Up to date: let the clock reach the next row (a virtual clock is moved on by readers)
        // and give the grab a moment to hand it out.
        std::uint64_t nextDue = Clock::nowNs() + kHoldPeriodNs;
        SensorsData next;
        if (position_ < frameCount_ && position_ != current_ && readFrame(position_, next))
            nextDue = dueNs(static_cast<double>(next.imu.timestamp) / 1e9);
        lock.unlock();
        Clock::waitUntil(nextDue, kReaderWait);
        lock.lock();
        grabbed_.wait_for(lock, kReaderWait, [this] { return !unread_.empty(); });
    }
    if (!unread_.empty()) {
        lastRead_ = unread_.front();
        unread_.pop_front();
    }
    data = lastRead_;
    return SUCCESS;
}

CameraInformation ReplaySession::information(Resolution resolution) const {
    const DeviceConfig defaults;
    CameraInformation info;
    info.serial_number = serial_;
    info.camera_model = model_;
    info.bus_type = BUS_TYPE::USB;
    info.camera_configuration.resolution = resolution.area() > 0 ? resolution : defaults.resolution;
    info.camera_configuration.fps = 30.f;
    info.camera_configuration.firmware_version = defaults.cameraFirmware;
    info.sensors_configuration.firmware_version = defaults.sensorFirmware;
    info.sensors_configuration.has_magnetometer = file_->has(Column::MAG_X);
    info.sensors_configuration.has_barometer = file_->has(Column::PRESSURE);
    info.sensors_configuration.has_temperature_sensors = file_->has(Column::TEMP_LEFT);
    return info;
}

Timestamp ReplaySession::timestamp(TIME_REFERENCE) const {
    std::lock_guard<std::mutex> lock(mutex_);
    return currentRecord_.imu.timestamp;
}

int ReplaySession::position() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return position_;
}

void ReplaySession::setPosition(int frame) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (frame < 0 || frame > frameCount_ || frame == position_) return;
    position_ = frame;
    if (frame == current_) return;  // a hold of the frame just handed out
    // Elsewhere: the reader's backlog no longer follows on, and the pace starts from here.
    unread_.clear();
    SensorsData record;
    if (frame < frameCount_ && readFrame(frame, record))
        anchorAt(static_cast<double>(record.imu.timestamp) / 1e9, Clock::nowNs());
}

void ReplaySession::setSpeed(float factor) {
    if (!(factor > 0.f)) return;
    std::lock_guard<std::mutex> lock(mutex_);
    const std::uint64_t now = Clock::nowNs();
    // The row playing now keeps its place in time.
    const double playing =
        anchorSeconds_ + static_cast<double>(now - anchorClockNs_) / 1e9 * speed_;
    speed_ = factor;
    anchorAt(playing, now);
}

Timestamp ReplaySession::frameTimestamp(int frame) {
    std::lock_guard<std::mutex> lock(mutex_);
    SensorsData record;
    return readFrame(frame, record) ? record.imu.timestamp : 0;
}

}  // namespace bw::sim
