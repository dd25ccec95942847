// bw::CameraOne on the simulated bus: a single-sensor-class CameraSession plus the parameters it
// was opened with.
#include <bw/Camera.hpp>

#include "CameraSession.hpp"

namespace bw {

struct CameraOne::Impl {
    sim::CameraSession session{sim::CameraClass::Mono};
    InitParametersOne parameters;
};

CameraOne::CameraOne() : impl_(std::make_unique<Impl>()) {}

CameraOne::~CameraOne() = default;

std::vector<DeviceProperties> CameraOne::getDeviceList() {
    return sim::listDevices(sim::CameraClass::Mono);
}

ERROR_CODE CameraOne::open(const InitParametersOne& parameters) {
    const ERROR_CODE result = impl_->session.open(parameters.input);
    if (result == SUCCESS) {
        impl_->parameters = parameters;
    }
    return result;
}

void CameraOne::close() { impl_->session.close(); }

bool CameraOne::isOpened() const { return impl_->session.isOpen(); }

ERROR_CODE CameraOne::grab() { return impl_->session.grab(); }

ERROR_CODE CameraOne::retrieveImage(ImageBGRA& image) const {
    return impl_->session.retrieveImage(image);
}

ERROR_CODE CameraOne::getSensorsData(SensorsData& data, TIME_REFERENCE reference) {
    return impl_->session.sensorsData(data, reference);
}

CameraInformation CameraOne::getCameraInformation(Resolution resolution) const {
    return impl_->session.information(resolution).value_or(CameraInformation());
}

InitParametersOne CameraOne::getInitParameters() const { return impl_->parameters; }

Timestamp CameraOne::getTimestamp(TIME_REFERENCE reference) const {
    return impl_->session.timestamp(reference);
}

}  // namespace bw
