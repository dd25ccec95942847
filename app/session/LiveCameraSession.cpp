#include "LiveCameraSession.h"

#include <pthread.h>

#include "InputThreadModul.h"
#include "programstates.h"

LiveCameraSession::LiveCameraSession(std::mutex& cameraLayerLock_, QObject* parent)
    : QObject(parent), cameraLayerLock(cameraLayerLock_) {}

LiveCameraSession::~LiveCameraSession() { close(); }

int LiveCameraSession::open(const Camera& camera) {
    close();
    module = std::make_unique<InputThreadModul>();
    lost = false;
    lossAnnounced = false;
    // A loss is reported from the grab loop or the sampling thread and handled on this thread.
    // A report that arrives after its camera was closed is dropped.
    const int openGeneration = ++generation;
    connect(
        module.get(), &InputThreadModul::DetectORYXDisconnect, this,
        [this, openGeneration] { onLossReported(openGeneration); }, Qt::QueuedConnection);
    module->enableToStart(true);
    return openAs(modelInfo(camera.model), camera);
}

int LiveCameraSession::openAs(const ModelInfo& listed, const Camera& camera) {
    // Device polling must not query the cameras while one is being opened.
    std::lock_guard<std::mutex> lock(cameraLayerLock);
    if (!camera.recording.isEmpty()) {
        ProgramStates::qstringAttr(StringSlot::REPLAY_PATH) = camera.recording;
        return module->replay(camera.recording);
    }
    switch (listed.opening) {
        case Opening::BY_SERIAL:
            return module->live(camera.serial);
        case Opening::BY_ID:
            return module->gmsl(camera.id);
        case Opening::BY_ID_SINGLE_SENSOR:
            return module->gmsl_one(camera.id);
        case Opening::NEVER:
            break;
    }
    return bw::FAILURE;
}

bool LiveCameraSession::prepareGpu() { return module != nullptr && module->CreateMemories(); }

ModelInfo LiveCameraSession::model() const {
    return modelInfo(module ? module->getModel() : InputThreadModul::kNoCameraModel);
}

void LiveCameraSession::start() {
    if (module == nullptr) return;
    module->startGrabbing();
    if (!model().imu) return;
    stopSampling = false;
    samplingRunning = true;
    samplingThread = std::thread(&LiveCameraSession::samplingLoop, this);
}

void LiveCameraSession::close() {
    // The sampling thread may have ended by itself (camera lost); it is joined either way,
    // before the module it reads from goes.
    stopSampling = true;
    if (samplingThread.joinable()) samplingThread.join();
    if (module == nullptr) return;
    disconnect(module.get(), nullptr, this, nullptr);
    module->stopGrabbing();
    module.reset();  // closes the camera
    lost = false;
}

void LiveCameraSession::clearSeries() {
    std::lock_guard<std::mutex> lock(seriesLock);
    sampleSeries.clear();
}

void LiveCameraSession::setRecorder(RowRecorder* recorder_) { recorder = recorder_; }

void LiveCameraSession::setPoseListener(PoseListener listener) {
    poseListener = std::move(listener);
}

// ---- sampling thread ---------------------------------------------------------------------------

bool LiveCameraSession::isCameraOpen(bool singleSensor) const {
    return singleSensor ? module->singleCamera().isOpened() : module->isStereoOpen();
}

int LiveCameraSession::pollSensors(bool singleSensor) {
    if (singleSensor)
        return module->singleCamera().getSensorsData(latestRecord, bw::TIME_REFERENCE::CURRENT);
    return module->stereoCamera().getSensorsData(latestRecord, bw::TIME_REFERENCE::CURRENT);
}

// The module outlives this thread: close() joins the thread before it lets the module go. There
// is no sleep: the camera layer's answer paces the loop.
void LiveCameraSession::samplingLoop() {
    // Named for debuggers, profilers and the benchmarks that measure it.
    pthread_setname_np(pthread_self(), kSamplingThreadName);
    const bool singleSensor = model().isSingleSensor();
    SampleIngest ingest(sampleSeries, sampleLevels, seriesLock, recorder);
    while (!stopSampling && isCameraOpen(singleSensor)) {
        if (pollSensors(singleSensor) == bw::CAMERA_NOT_DETECTED) {
            lost = true;
            module->notifyCameraLost();
            break;
        }
        if (ingest.ingest(latestRecord) == SampleIngest::Outcome::Appended && poseListener)
            poseListener(ingest.pose());
    }
    samplingRunning = false;
}

void LiveCameraSession::onLossReported(int reportedGeneration) {
    if (reportedGeneration != generation || lossAnnounced) return;
    lossAnnounced = true;
    lost = true;
    emit cameraLost();
}
