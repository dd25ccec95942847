// A recording played back as a camera. Frames are the recording's rows: each grab hands out the
// row at the replay position and moves the position on by one, at the pace of the recorded IMU
// timestamps (times the replay speed). Sensor readers receive every grabbed row once and in
// order, as from a live camera.
//
// Pausing is the caller's: seeking back to the frame just grabbed holds it; such holds come at
// the image rate and deliver nothing new to sensor readers.
//
// Thread-safety: the grab thread, a sampling thread and the GUI may use one session at once.
#pragma once

#include <bw/Camera.hpp>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "RecordingFile.h"

namespace bw::sim {

class ReplaySession {
public:
    // Null, with `problem` filled in, when the file is not a recording.
    static std::unique_ptr<ReplaySession> open(const std::string& path,
                                               recording::Problem& problem);

    ERROR_CODE grab();
    ERROR_CODE retrieveImage(ImageBGRA& image) const;
    ERROR_CODE sensorsData(SensorsData& data, TIME_REFERENCE reference);
    CameraInformation information(Resolution resolution) const;
    Timestamp timestamp(TIME_REFERENCE reference) const;

    int position() const;
    void setPosition(int frame);
    int frameCount() const { return frameCount_; }
    void setSpeed(float factor);
    Timestamp frameTimestamp(int frame);

    // The camera the file was recorded with, from its name, or else a model with its sensors.
    MODEL model() const { return model_; }
    unsigned serial() const { return serial_; }

private:
    explicit ReplaySession(std::unique_ptr<recording::RecordingFile> file);
    bool readFrame(int frame, SensorsData& record);
    void anchorAt(double rowSeconds, std::uint64_t clockNs);
    std::uint64_t dueNs(double rowSeconds) const;

    std::unique_ptr<recording::RecordingFile> file_;
    const int frameCount_;
    MODEL model_ = MODEL::ORYX_D;
    unsigned serial_ = 0;

    mutable std::mutex mutex_;
    std::condition_variable grabbed_;
    int position_ = 0;  // the frame the next grab hands out
    int current_ = -1;  // the frame last handed out
    SensorsData currentRecord_;
    double currentSeconds_ = 0.0;
    std::deque<SensorsData> unread_;  // grabbed rows that the sensor reader has not had
    SensorsData lastRead_;
    int cachedFrame_ = -1;
    SensorsData cachedRecord_;
    float speed_ = 1.f;
    // Row time `anchorSeconds_` plays at clock time `anchorClockNs_`.
    double anchorSeconds_ = 0.0;
    std::uint64_t anchorClockNs_ = 0;
};

}  // namespace bw::sim
