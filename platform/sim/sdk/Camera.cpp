// bw::Camera on the simulated bus: a stereo-class CameraSession plus the parameters it was
// opened with; or, opened from a file, a replayed recording.
#include <bw/Camera.hpp>

#include "CameraSession.hpp"
#include "devices/ReplaySession.hpp"

namespace bw {

struct Camera::Impl {
    sim::CameraSession session{sim::CameraClass::Stereo};
    std::unique_ptr<sim::ReplaySession> replay;  // set while a recording is open
    InitParameters parameters;
};

Camera::Camera() : impl_(std::make_unique<Impl>()) {}

Camera::~Camera() = default;

std::vector<DeviceProperties> Camera::getDeviceList() {
    return sim::listDevices(sim::CameraClass::Stereo);
}

ERROR_CODE Camera::open(const InitParameters& parameters) {
    close();
    if (parameters.input.source() == InputType::SOURCE::FILE) {
        recording::Problem problem;
        impl_->replay = sim::ReplaySession::open(parameters.input.filePath(), problem);
        if (!impl_->replay) return INVALID_RECORDING_FILE;
        impl_->parameters = parameters;
        return SUCCESS;
    }
    const ERROR_CODE result = impl_->session.open(parameters.input);
    if (result == SUCCESS) {
        impl_->parameters = parameters;
    }
    return result;
}

void Camera::close() {
    impl_->session.close();
    impl_->replay.reset();
}

bool Camera::isOpened() const { return impl_->replay || impl_->session.isOpen(); }

ERROR_CODE Camera::grab(const RuntimeParameters&) {
    return impl_->replay ? impl_->replay->grab() : impl_->session.grab();
}

ERROR_CODE Camera::retrieveImage(ImageBGRA& image) const {
    return impl_->replay ? impl_->replay->retrieveImage(image)
                         : impl_->session.retrieveImage(image);
}

ERROR_CODE Camera::getSensorsData(SensorsData& data, TIME_REFERENCE reference) {
    return impl_->replay ? impl_->replay->sensorsData(data, reference)
                         : impl_->session.sensorsData(data, reference);
}

CameraInformation Camera::getCameraInformation(Resolution resolution) const {
    if (impl_->replay) return impl_->replay->information(resolution);
    return impl_->session.information(resolution).value_or(CameraInformation());
}

InitParameters Camera::getInitParameters() const { return impl_->parameters; }

CUcontext Camera::getCUDAContext() const { return nullptr; }

Timestamp Camera::getTimestamp(TIME_REFERENCE reference) const {
    return impl_->replay ? impl_->replay->timestamp(reference)
                         : impl_->session.timestamp(reference);
}

// Live cameras have no replay position: they answer 0 and ignore the setters.
int Camera::getReplayPosition() const { return impl_->replay ? impl_->replay->position() : 0; }

void Camera::setReplayPosition(int frame) {
    if (impl_->replay) impl_->replay->setPosition(frame);
}

int Camera::getReplayFrameCount() const { return impl_->replay ? impl_->replay->frameCount() : 0; }

void Camera::setReplaySpeed(float factor) {
    if (impl_->replay) impl_->replay->setSpeed(factor);
}

Timestamp Camera::getReplayTimestamp(int frame) const {
    return impl_->replay ? impl_->replay->frameTimestamp(frame) : 0;
}

}  // namespace bw
