// The connection to one camera: opens it, prepares the GPU state and keeps grabbing images on
// its own thread so that the camera keeps streaming. The sampling loop reads sensor data from the
// same camera objects.
#pragma once

#include <QThread>
#include <atomic>
#include <bw/Camera.hpp>
#include <cstdint>
#include <mutex>

class InputThreadModul : public QThread {
    Q_OBJECT

public:
    // The value getModel() gives when no camera is open; outside every model code on purpose.
    static constexpr unsigned kNoCameraModel = 32;

    InputThreadModul();
    ~InputThreadModul() override;

    int live(unsigned serial);
    int gmsl(unsigned id);
    int gmsl_one(unsigned id);
    int replay(const QString& path);

    bw::InitParameters getInitParams() const;
    bw::InitParametersOne getInitParamsOne() const;

    bool CreateMemories();
    void enableToStart(bool enable);
    void startGrabbing();
    void stopGrabbing();

    // Raises DetectORYXDisconnect() once per module, whichever thread (grab or sampling)
    // notices the loss first.
    void notifyCameraLost();

    unsigned getModel() const;
    unsigned getSerialNum() const;

    // Replay of a recording opened with replay(). The position is the replay slider's value:
    // the grab loop moves it on while playing; seekReplay() moves it and the camera at once.
    bool isReplaying() const { return isFile; }
    // The replayed recording could no longer be read (changed or cut after it was opened): the
    // grab loop stopped and reported the camera lost.
    bool replayBecameUnreadable() const { return replayUnreadable; }
    int replayPosition() const { return replaySlider; }
    int replayFrameCount() const { return frameCount; }
    void seekReplay(int frame);
    void setReplaySpeed(float factor);
    // Recorded time of a frame, and of the frame shown now, in ns.
    bw::Timestamp replayTimestamp(int frame) const;
    bw::Timestamp shownFrameTimestamp() const;

    bw::Camera& stereoCamera() { return camera; }
    bw::CameraOne& singleCamera() { return cameraOne; }
    bool isStereoOpen() const { return stereoOpen; }
    // The single-sensor camera is the open one; at most one of the two is.
    bool isSingleSensorOpen() const { return !stereoOpen && cameraOne.isOpened(); }
    bool isOpened() const { return opened; }
    std::uint64_t getImageWidth() const { return imageWidth; }
    std::uint64_t getImageHeight() const { return imageHeight; }

signals:
    void sendContext();
    void sendInit();
    void DetectORYXDisconnect();

protected:
    void run() override;

private:
    int openStereo(bw::InitParameters parameters);
    void keepStereoFacts();
    bool waitForStart();
    int grabOnce(bool singleSensor);
    void followReplay(bool paused, int step);
    void rewindAtTheEnd();

    bw::CUcontext cudaContext = nullptr;
    // Written by the grab thread and read by the window, hence a plain atomic position rather
    // than a slider widget.
    std::atomic<int> replaySlider{0};
    std::atomic<int> frameCount{0};
    bw::Camera camera;
    std::atomic<bool> stereoOpen{false};
    bw::CameraOne cameraOne;
    std::mutex grabMutex;
    std::uint32_t serialNumber = 0;
    std::uint32_t modelCode = 0;
    bw::CameraInformation cameraInfo;
    std::atomic<bool> start{false};
    std::atomic<bool> running{false};
    std::atomic<bool> opened{false};
    std::atomic<bool> isFile{false};
    std::atomic<bool> replayUnreadable{false};
    std::atomic<bool> quit{false};
    std::atomic<bool> lossReported{false};
    std::uint64_t imageWidth = 0;
    std::uint64_t imageHeight = 0;
    std::uint32_t oneSerialNumber = 0;
    std::uint32_t oneModelCode = 0;
};
