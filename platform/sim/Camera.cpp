// bw::Camera on the simulated bus: a stereo-class CameraSession plus the parameters it was
// opened with.
#include <bw/Camera.hpp>

#include "CameraSession.hpp"

namespace bw {

struct Camera::Impl {
    sim::CameraSession session{sim::CameraClass::Stereo};
    InitParameters parameters;
};

Camera::Camera() : impl_(std::make_unique<Impl>()) {}

Camera::~Camera() = default;

std::vector<DeviceProperties> Camera::getDeviceList() {
    return sim::listDevices(sim::CameraClass::Stereo);
}

ERROR_CODE Camera::open(const InitParameters& parameters) {
    const ERROR_CODE result = impl_->session.open(parameters.input);
    if (result == SUCCESS) {
        impl_->parameters = parameters;
    }
    return result;
}

void Camera::close() { impl_->session.close(); }

bool Camera::isOpened() const { return impl_->session.isOpen(); }

ERROR_CODE Camera::grab(const RuntimeParameters&) { return impl_->session.grab(); }

ERROR_CODE Camera::retrieveImage(ImageBGRA& image) const {
    return impl_->session.retrieveImage(image);
}

ERROR_CODE Camera::getSensorsData(SensorsData& data, TIME_REFERENCE reference) {
    return impl_->session.sensorsData(data, reference);
}

CameraInformation Camera::getCameraInformation(Resolution resolution) const {
    return impl_->session.information(resolution).value_or(CameraInformation());
}

InitParameters Camera::getInitParameters() const { return impl_->parameters; }

CUcontext Camera::getCUDAContext() const { return nullptr; }

Timestamp Camera::getTimestamp(TIME_REFERENCE reference) const {
    return impl_->session.timestamp(reference);
}

// Live cameras have no replay position.
int Camera::getReplayPosition() const { return 0; }

void Camera::setReplayPosition(int) {}

int Camera::getReplayFrameCount() const { return 0; }

}  // namespace bw
