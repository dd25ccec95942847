// The camera the window has open, and everything that lives as long as it does: the input
// module that opens the camera and keeps it grabbing, the sampling thread that reads its sensor
// records into the series, and the series themselves.
//
// The window drives the session from the GUI thread. Only the session creates and deletes the
// input module, and only on that thread: the grab loop and the sampling thread merely report a
// lost camera, and the window closes the session when the report arrives.
#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <bw/sensors.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "CameraModels.h"
#include "SampleIngest.h"
#include "SensorSamples.h"

class InputThreadModul;

class LiveCameraSession : public QObject {
    Q_OBJECT

public:
    // A camera as the device list shows it.
    struct Camera {
        std::uint32_t id = 0;
        std::uint32_t serial = 0;
        std::uint32_t model = 0;
        QString recording;  // path of a recording to replay; empty for a camera
    };

    using PoseListener = std::function<void(const SampleIngest::Pose&)>;
    static constexpr const char* kSamplingThreadName = "sampling";

    // Opening holds cameraLayerLock, as device polling does, so that the two never query the
    // camera layer at the same time.
    explicit LiveCameraSession(std::mutex& cameraLayerLock, QObject* parent = nullptr);
    ~LiveCameraSession() override;

    // Creates the input module and opens the camera the way its model is opened. Returns the
    // camera layer's result; a model that is never opened gives FAILURE. The module stays, open
    // or not, until close().
    int open(const Camera& camera);
    // Prepares the GPU state of the opened camera; false when the GPU ran out of memory.
    bool prepareGpu();
    // Starts the grab loop and, for a camera with motion sensors, the sampling thread.
    void start();
    // Stops the sampling thread and the grab loop and closes the camera. Does nothing without a
    // module.
    void close();

    // GUI thread only.
    InputThreadModul* input() const { return module.get(); }
    // The row of the opened camera's model (from the camera itself, not from the list).
    ModelInfo model() const;
    bool isSampling() const { return samplingRunning.load(); }
    // The camera was found missing (grab loop or sampling thread) and is not closed yet.
    bool isLost() const { return lost.load(); }

    // The series are guarded by seriesMutex(); the levels are read without it.
    SensorSeries& series() { return sampleSeries; }
    const SensorSeries& series() const { return sampleSeries; }
    const SensorLevels& levels() const { return sampleLevels; }
    std::mutex& seriesMutex() { return seriesLock; }
    // Empties the series. The running ranges stay.
    void clearSeries();
    // For a camera without motion sensors the window keeps the time, from the image clock.
    void setCurrentTime(double seconds) { sampleLevels.currentTime = seconds; }

    // Asked on the sampling thread, with the series locked, whether to record a row.
    void setRecorder(RowRecorder* recorder);
    // Called on the sampling thread with the pose of every appended row.
    void setPoseListener(PoseListener listener);

signals:
    // The camera went away. Once per opened camera, delivered on the GUI thread.
    void cameraLost();

private:
    int openAs(const ModelInfo& listed, const Camera& camera);
    void samplingLoop();
    bool isCameraOpen(bool singleSensor) const;
    int pollSensors(bool singleSensor);
    void onLossReported(int generation);

    std::mutex& cameraLayerLock;
    std::unique_ptr<InputThreadModul> module;
    int generation = 0;  // which module's loss reports still count
    bool lossAnnounced = false;

    std::thread samplingThread;
    std::atomic<bool> stopSampling{false};
    std::atomic<bool> samplingRunning{false};
    std::atomic<bool> lost{false};
    bw::SensorsData latestRecord;  // the sampling thread's own

    SensorSeries sampleSeries;
    SensorLevels sampleLevels;
    std::mutex seriesLock;
    RowRecorder* recorder = nullptr;
    PoseListener poseListener;
};
