#include "InputThreadModul.h"

#include <algorithm>
#include <bw/gpu.hpp>

#include "programstates.h"

namespace {

void pauseMs(unsigned long ms) { QThread::msleep(ms); }

}  // namespace

InputThreadModul::InputThreadModul() = default;

InputThreadModul::~InputThreadModul() {
    start = false;
    quit = true;
    // A module destroyed while grabbing stops its own loop first.
    running = false;
    pauseMs(10);
    if (isRunning()) wait();
    bw::gpu::makeContextCurrent(cudaContext);
    camera.close();
    stereoOpen = false;
    bw::gpu::getLastError();
}

bw::InitParameters InputThreadModul::getInitParams() const {
    bw::InitParameters parameters(bw::RESOLUTION::AUTO, 0, false, bw::DEPTH_MODE::PERFORMANCE,
                                  bw::UNIT::MILLIMETER, bw::COORDINATE_SYSTEM::IMAGE, 1, -1, -1.f,
                                  -1.f, false, 0, false, "", 1, nullptr, bw::InputType(), "", false,
                                  true, "", 5.f, false, 0.f, 0, false);
    parameters.stream_quality = ProgramStates::getIntAttr(IntSlot::STREAM_QUALITY);
    parameters.depth_stabilization = 0;
    parameters.sensors_start_delay_ms = 0;
    parameters.image_downscale_x = 2;
    parameters.image_downscale_y = 2;
    parameters.sensors_required = 1;
    return parameters;
}

bw::InitParametersOne InputThreadModul::getInitParamsOne() const {
    bw::InitParametersOne parameters;
    parameters.stream_quality = ProgramStates::getIntAttr(IntSlot::STREAM_QUALITY);
    parameters.sensors_required = true;
    parameters.image_downscale_x = 2;
    parameters.image_downscale_y = 2;
    parameters.open_timeout_sec = 5.f;
    parameters.exposure_preset = 0;
    parameters.image_buffer_count = 1;
    return parameters;
}

int InputThreadModul::live(unsigned serial) {
    bw::InitParameters parameters = getInitParams();
    parameters.input.setFromSerialNumber(serial, bw::BUS_TYPE::USB);
    parameters.sensor_rate_percent = ProgramStates::getIntAttr(IntSlot::SENSOR_RATE_PERCENT);
    return openStereo(parameters);
}

int InputThreadModul::gmsl(unsigned id) {
    bw::InitParameters parameters = getInitParams();
    parameters.input.setFromCameraID(id, bw::BUS_TYPE::GMSL, bw::CAMERA_TYPE::STEREO);
    return openStereo(parameters);
}

int InputThreadModul::gmsl_one(unsigned id) {
    bw::InitParametersOne parameters = getInitParamsOne();
    parameters.input.setFromCameraID(id, bw::BUS_TYPE::GMSL, bw::CAMERA_TYPE::MONO);
    const int result = cameraOne.open(parameters);
    if (result != bw::SUCCESS) return result;
    const bw::CameraInformation info = cameraOne.getCameraInformation(bw::Resolution(0, 0));
    oneSerialNumber = info.serial_number;
    oneModelCode = static_cast<std::uint32_t>(info.camera_model);
    imageWidth = info.camera_configuration.resolution.width;
    imageHeight = info.camera_configuration.resolution.height;
    opened = true;
    return result;
}

int InputThreadModul::replay(const QString& path) {
    bw::InitParameters parameters = getInitParams();
    parameters.input.setFromFile(path.toStdString());
    const int result = openStereo(parameters);
    if (result == bw::SUCCESS) {
        isFile = true;
        frameCount = camera.getReplayFrameCount();
        replaySlider = 0;
    }
    return result;
}

void InputThreadModul::seekReplay(int frame) {
    if (!isFile) return;
    std::lock_guard<std::mutex> lock(grabMutex);
    const int position = std::clamp(frame, 0, std::max(0, frameCount - 1));
    camera.setReplayPosition(position);
    replaySlider = position;
}

void InputThreadModul::setReplaySpeed(float factor) {
    if (isFile) camera.setReplaySpeed(factor);
}

bw::Timestamp InputThreadModul::replayTimestamp(int frame) const {
    return isFile ? camera.getReplayTimestamp(frame) : 0;
}

bw::Timestamp InputThreadModul::shownFrameTimestamp() const {
    return camera.getTimestamp(bw::TIME_REFERENCE::IMAGE);
}

int InputThreadModul::openStereo(bw::InitParameters parameters) {
    const int result = camera.open(parameters);
    if (result != bw::SUCCESS) return result;
    keepStereoFacts();
    opened = true;
    stereoOpen = true;
    return result;
}

void InputThreadModul::keepStereoFacts() {
    cameraInfo = camera.getCameraInformation(bw::Resolution(0, 0));
    serialNumber = cameraInfo.serial_number;
    modelCode = static_cast<std::uint32_t>(cameraInfo.camera_model);
    imageWidth = cameraInfo.camera_configuration.resolution.width;
    imageHeight = cameraInfo.camera_configuration.resolution.height;
}

bool InputThreadModul::CreateMemories() {
    if (!opened) return false;
    bw::gpu::getLastError();
    const bool single = isSingleSensorOpen();
    const bw::CameraInformation info =
        single ? cameraOne.getCameraInformation() : camera.getCameraInformation();
    ProgramStates::setIntAttr(IntSlot::MODEL_CODE, static_cast<int>(info.camera_model));
    const double openTimeout = single ? cameraOne.getInitParameters().open_timeout_sec
                                      : camera.getInitParameters().open_timeout_sec;
    ProgramStates::setDoubleAttr(DoubleSlot::OPEN_TIMEOUT, openTimeout);
    cudaContext = single ? nullptr : camera.getCUDAContext();
    bw::gpu::makeContextCurrent(cudaContext);
    imageWidth = info.camera_configuration.resolution.width;
    imageHeight = info.camera_configuration.resolution.height;
    ProgramStates::setIntAttr(IntSlot::IMAGE_WIDTH, static_cast<int>(imageWidth));
    ProgramStates::setIntAttr(IntSlot::GRAB_WIDTH, static_cast<int>(imageWidth));
    ProgramStates::setIntAttr(IntSlot::IMAGE_HEIGHT, static_cast<int>(imageHeight));
    ProgramStates::setIntAttr(IntSlot::GRAB_HEIGHT, static_cast<int>(imageHeight));
    emit sendInit();
    return bw::gpu::getLastError() == bw::gpu::SUCCESS;
}

void InputThreadModul::enableToStart(bool) {
    // Always enables, whatever the argument.
    start = true;
}

void InputThreadModul::startGrabbing() {
    if (!opened) return;
    quit = false;
    QThread::start(QThread::InheritPriority);
}

void InputThreadModul::stopGrabbing() {
    // The loop may not have begun yet: quit keeps it from starting after running is cleared.
    quit = true;
    running = false;
    wait();
}

void InputThreadModul::notifyCameraLost() {
    if (!lossReported.exchange(true)) emit DetectORYXDisconnect();
}

unsigned InputThreadModul::getModel() const {
    if (stereoOpen) return modelCode;
    if (isSingleSensorOpen()) return oneModelCode;
    return kNoCameraModel;
}

unsigned InputThreadModul::getSerialNum() const {
    if (stereoOpen) return serialNumber;
    if (isSingleSensorOpen()) return oneSerialNumber;
    return 0;
}

bool InputThreadModul::waitForStart() {
    while (!start) {
        if (quit) return false;
        pauseMs(5);
    }
    return !quit;
}

// Before a replay grab: while playing, the step is added to the slider (a step of 1 leaves the
// camera to move on by itself); while paused, the camera goes back to the slider's frame, which
// holds it there.
void InputThreadModul::followReplay(bool paused, int step) {
    if (!isFile) return;
    if (paused) {
        camera.setReplayPosition(replaySlider);
    } else if (step != 1) {
        const int position = replaySlider + step;
        camera.setReplayPosition(position);
        replaySlider = position;
    }
}

int InputThreadModul::grabOnce(bool singleSensor) {
    std::lock_guard<std::mutex> lock(grabMutex);
    const bool paused = ProgramStates::getBoolAttr(BoolSlot::PAUSE);
    const int step = ProgramStates::getIntAttr(IntSlot::REPLAY_STEP);
    followReplay(paused, step);
    if (paused && !isFile) return bw::SUCCESS;
    if (singleSensor) return cameraOne.grab();
    const int result =
        camera.grab(bw::RuntimeParameters(true, false, 95, 100, bw::REFERENCE_FRAME::CAMERA, true));
    // With a step of 1 the slider follows the camera, which moves on only when a frame was due.
    if (isFile && !paused && step == 1) replaySlider = camera.getReplayPosition();
    return result;
}

// A replay loops: past its last frame it starts again from the first.
void InputThreadModul::rewindAtTheEnd() {
    std::lock_guard<std::mutex> lock(grabMutex);
    if (camera.getReplayPosition() < frameCount) return;
    replaySlider = 0;
    camera.setReplayPosition(0);
}

void InputThreadModul::run() {
    const bool singleSensor = isSingleSensorOpen();
    if (!waitForStart()) return;
    running = true;
    ProgramStates::setIntAttr(IntSlot::GRAB_WIDTH, static_cast<int>(imageWidth));
    ProgramStates::setIntAttr(IntSlot::GRAB_HEIGHT, static_cast<int>(imageHeight));
    while (running && !quit) {
        bw::gpu::makeContextCurrent(cudaContext);
        const int result = grabOnce(singleSensor);
        const bool unreadable = isFile && result == bw::INVALID_RECORDING_FILE;
        if (result == bw::CAMERA_NOT_DETECTED || unreadable) {
            replayUnreadable = unreadable;
            running = false;
            opened = false;
            isFile = false;
            notifyCameraLost();
        } else if (result != bw::SUCCESS) {
            pauseMs(1);
        }
        if (isFile && !ProgramStates::getBoolAttr(BoolSlot::PAUSE)) rewindAtTheEnd();
    }
}
