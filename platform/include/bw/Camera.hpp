// Stereo and single-sensor camera objects. A camera object is closed when built; open() binds it
// to one device, close() (or destruction) releases it.
#pragma once

#include <bw/sensors.hpp>
#include <bw/types.hpp>
#include <cstdint>
#include <memory>
#include <vector>

namespace bw {

// An image in host memory, 4 bytes per pixel in B, G, R, A order, rows packed.
struct ImageBGRA {
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<std::uint8_t> pixels;
};

class Camera {
public:
    Camera();
    ~Camera();
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    // Every stereo camera attached now, whether it can be opened or not.
    static std::vector<DeviceProperties> getDeviceList();

    ERROR_CODE open(const InitParameters& parameters = InitParameters());
    void close();
    bool isOpened() const;

    // Takes the next image. CAMERA_NOT_DETECTED once the camera is gone; INVALID_RECORDING_FILE
    // when a replayed recording can no longer be read (it was changed or cut after opening).
    ERROR_CODE grab(const RuntimeParameters& parameters = RuntimeParameters());
    // Left image of the last grab.
    ERROR_CODE retrieveImage(ImageBGRA& image) const;

    // With TIME_REFERENCE::CURRENT each caller receives every IMU sample once and in order: the
    // newest when it is up to date, otherwise the oldest it has not had (up to one second of
    // backlog). When it already holds the newest, the call waits for the next sample, at most one
    // IMU period. With TIME_REFERENCE::IMAGE the record at the last grabbed image.
    ERROR_CODE getSensorsData(SensorsData& data, TIME_REFERENCE reference);

    CameraInformation getCameraInformation(Resolution resolution = Resolution(0, 0)) const;
    InitParameters getInitParameters() const;
    CUcontext getCUDAContext() const;  // null: no GPU back end here
    Timestamp getTimestamp(TIME_REFERENCE reference) const;

    // Position control of a replayed recording (unused for live cameras). A replay's frames are
    // the recording's rows; each grab hands out the frame at the position and moves on by one,
    // answering END_OF_RECORDING_FILE past the last. Seeking to the frame just grabbed holds it.
    int getReplayPosition() const;
    void setReplayPosition(int frame);
    int getReplayFrameCount() const;
    // Playback pace relative to the recorded timestamps (1 = as recorded).
    void setReplaySpeed(float factor);
    // Recorded IMU timestamp of a frame; 0 outside the recording.
    Timestamp getReplayTimestamp(int frame) const;

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
};

class CameraOne {
public:
    CameraOne();
    ~CameraOne();
    CameraOne(const CameraOne&) = delete;
    CameraOne& operator=(const CameraOne&) = delete;

    static std::vector<DeviceProperties> getDeviceList();

    ERROR_CODE open(const InitParametersOne& parameters = InitParametersOne());
    void close();
    bool isOpened() const;

    ERROR_CODE grab();
    ERROR_CODE retrieveImage(ImageBGRA& image) const;
    ERROR_CODE getSensorsData(SensorsData& data, TIME_REFERENCE reference);

    CameraInformation getCameraInformation(Resolution resolution = Resolution(0, 0)) const;
    InitParametersOne getInitParameters() const;
    Timestamp getTimestamp(TIME_REFERENCE reference) const;

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
};

}  // namespace bw
