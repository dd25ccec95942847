// Names of the API's codes, the input-source setters and the long InitParameters constructor.
#include <bw/sensors.hpp>
#include <bw/types.hpp>
#include <utility>

namespace bw {

const char* toString(ERROR_CODE code) {
    switch (code) {
        case SUCCESS:
            return "SUCCESS";
        case FAILURE:
            return "FAILURE";
        case NO_GPU_COMPATIBLE:
            return "NO GPU COMPATIBLE";
        case NOT_ENOUGH_GPU_MEMORY:
            return "NOT ENOUGH GPU MEMORY";
        case CAMERA_NOT_DETECTED:
            return "CAMERA NOT DETECTED";
        case SENSORS_NOT_AVAILABLE:
            return "SENSORS NOT AVAILABLE";
        case INVALID_RESOLUTION:
            return "INVALID RESOLUTION";
        case LOW_USB_BANDWIDTH:
            return "LOW USB BANDWIDTH";
        case CALIBRATION_FILE_NOT_AVAILABLE:
            return "CALIBRATION FILE NOT AVAILABLE";
        case INVALID_RECORDING_FILE:
            return "INVALID RECORDING FILE";
        case CAMERA_NOT_INITIALIZED:
            return "CAMERA NOT INITIALIZED";
        case INVALID_FUNCTION_PARAMETERS:
            return "INVALID FUNCTION PARAMETERS";
        case INVALID_FUNCTION_CALL:
            return "INVALID FUNCTION CALL";
        case CAMERA_ALREADY_IN_USE:
            return "CAMERA ALREADY IN USE";
        case END_OF_RECORDING_FILE:
            return "END OF RECORDING FILE";
    }
    return "UNKNOWN";
}

const char* toString(MODEL model) {
    switch (model) {
        case MODEL::ORYX:
            return "ORYX";
        case MODEL::ORYX_B:
            return "ORYX_B";
        case MODEL::ORYX_C:
            return "ORYX_C";
        case MODEL::ORYX_D:
            return "ORYX_D";
        case MODEL::ORYX_E:
            return "ORYX_E";
        case MODEL::ORYX_F:
            return "ORYX_F";
        case MODEL::ORYX_SOLO_A:
            return "ORYX_SOLO_A";
        case MODEL::ORYX_SOLO_B:
            return "ORYX_SOLO_B";
    }
    return "UNKNOWN";
}

void InputType::setFromSerialNumber(unsigned int serial, BUS_TYPE bus) {
    source_ = SOURCE::SERIAL_NUMBER;
    serial_ = serial;
    bus_ = bus;
}

void InputType::setFromCameraID(unsigned int id, BUS_TYPE bus, CAMERA_TYPE type) {
    source_ = SOURCE::CAMERA_ID;
    id_ = id;
    bus_ = bus;
    type_ = type;
}

void InputType::setFromFile(const std::string& path) {
    source_ = SOURCE::FILE;
    path_ = path;
}

InitParameters::InitParameters(RESOLUTION resolution, int fps, bool imageFlip, DEPTH_MODE depthMode,
                               UNIT units, COORDINATE_SYSTEM coordinates, int verbosity_, int gpuId,
                               float depthMin, float depthMax, bool disableSelfCalibration,
                               int imageRotation, bool rightSideMeasure,
                               const std::string& settingsPath, int imageBufferCount,
                               CUcontext cudaContext, InputType input_,
                               const std::string& logFilePath, bool asyncGrabRecovery,
                               bool imageEnhancement, const std::string& calibrationFilePath,
                               float openTimeoutSec, bool asyncImageRetrieval, float maxGrabRate,
                               int imageValidityCheck, bool sensorsOnly)
    : camera_resolution(resolution),
      camera_fps(fps),
      camera_image_flip(imageFlip),
      depth_mode(depthMode),
      coordinate_units(units),
      coordinate_system(coordinates),
      verbosity(verbosity_),
      gpu_device_id(gpuId),
      depth_minimum_distance(depthMin),
      depth_maximum_distance(depthMax),
      disable_self_calibration(disableSelfCalibration),
      image_rotation(imageRotation),
      enable_right_side_measure(rightSideMeasure),
      settings_path(settingsPath),
      image_buffer_count(imageBufferCount),
      cuda_context(cudaContext),
      input(std::move(input_)),
      log_file_path(logFilePath),
      async_grab_recovery(asyncGrabRecovery),
      enable_image_enhancement(imageEnhancement),
      calibration_file_path(calibrationFilePath),
      open_timeout_sec(openTimeoutSec),
      async_image_retrieval(asyncImageRetrieval),
      max_grab_rate(maxGrabRate),
      image_validity_check(imageValidityCheck),
      sensors_only(sensorsOnly) {}

ERROR_CODE SensorsData::TemperatureData::get(SENSOR_LOCATION location, float& celsius) const {
    const int index = static_cast<int>(location);
    if (index < 0 || index >= static_cast<int>(SENSOR_LOCATION::LAST)) {
        return INVALID_FUNCTION_PARAMETERS;
    }
    if (!available[index]) {
        return SENSORS_NOT_AVAILABLE;
    }
    celsius = value[index];
    return SUCCESS;
}

}  // namespace bw
