// Basic value types of the bw camera API: error codes, camera models, parameter records and
// device descriptions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace bw {

// Every device call answers with one of these; 0 is success. Unscoped on purpose so that
// callers can compare a result with a plain number.
enum ERROR_CODE : int {
    SUCCESS = 0,
    FAILURE = 1,
    NO_GPU_COMPATIBLE = 2,
    NOT_ENOUGH_GPU_MEMORY = 3,
    CAMERA_NOT_DETECTED = 4,
    SENSORS_NOT_AVAILABLE = 5,
    INVALID_RESOLUTION = 6,
    LOW_USB_BANDWIDTH = 7,
    CALIBRATION_FILE_NOT_AVAILABLE = 8,
    INVALID_RECORDING_FILE = 9,
    CAMERA_NOT_INITIALIZED = 10,
    INVALID_FUNCTION_PARAMETERS = 11,
    INVALID_FUNCTION_CALL = 12,
    CAMERA_ALREADY_IN_USE = 13,
    END_OF_RECORDING_FILE = 14,
};

const char* toString(ERROR_CODE code);

// Camera model codes as the devices report them.
enum class MODEL : int {
    ORYX = 0,
    ORYX_B = 1,
    ORYX_C = 2,
    ORYX_D = 3,
    ORYX_E = 4,
    ORYX_F = 5,
    ORYX_SOLO_A = 30,
    ORYX_SOLO_B = 31,
};

// "ORYX", "ORYX_B", ... "ORYX_SOLO_B"; "UNKNOWN" for a code outside the list.
const char* toString(MODEL model);

// Which clock a timestamp query refers to: the last grabbed image or "now".
enum class TIME_REFERENCE : int { IMAGE = 0, CURRENT = 1 };

// Nanoseconds since the Unix epoch.
using Timestamp = std::uint64_t;

// Opaque GPU context handle; always null on machines without a GPU back end.
using CUcontext = void*;

struct Resolution {
    std::size_t width = 0;
    std::size_t height = 0;
    Resolution() = default;
    Resolution(std::size_t w, std::size_t h) : width(w), height(h) {}
    std::size_t area() const { return width * height; }
};

enum class RESOLUTION : int {
    HD2K = 0,
    HD1080 = 1,
    HD1200 = 2,
    HD720 = 3,
    SVGA = 4,
    VGA = 5,
    AUTO = 8
};
enum class DEPTH_MODE : int { NONE = 0, PERFORMANCE = 1, QUALITY = 2, ULTRA = 3 };
enum class UNIT : int { MILLIMETER = 0, CENTIMETER = 1, METER = 2 };
enum class COORDINATE_SYSTEM : int { IMAGE = 0, LEFT_HANDED_Y_UP = 1, RIGHT_HANDED_Y_UP = 2 };
enum class REFERENCE_FRAME : int { WORLD = 0, CAMERA = 1 };

// How a camera is attached.
enum class BUS_TYPE : int { AUTO = 0, GMSL = 1, USB = 2 };
// Stereo or single-sensor camera, for opening by id on the GMSL bus.
enum class CAMERA_TYPE : int { MONO = 0, STEREO = 1 };

// Where a camera is to be opened from.
class InputType {
public:
    enum class SOURCE : int { DEFAULT = 0, SERIAL_NUMBER = 1, CAMERA_ID = 2, FILE = 3 };

    void setFromSerialNumber(unsigned int serial, BUS_TYPE bus = BUS_TYPE::USB);
    void setFromCameraID(unsigned int id, BUS_TYPE bus = BUS_TYPE::AUTO,
                         CAMERA_TYPE type = CAMERA_TYPE::STEREO);
    void setFromFile(const std::string& path);

    SOURCE source() const { return source_; }
    unsigned int serialNumber() const { return serial_; }
    unsigned int cameraId() const { return id_; }
    BUS_TYPE bus() const { return bus_; }
    CAMERA_TYPE cameraType() const { return type_; }
    const std::string& filePath() const { return path_; }

private:
    SOURCE source_ = SOURCE::DEFAULT;
    unsigned int serial_ = 0;
    unsigned int id_ = 0;
    BUS_TYPE bus_ = BUS_TYPE::AUTO;
    CAMERA_TYPE type_ = CAMERA_TYPE::STEREO;
    std::string path_;
};

// Opening parameters of a stereo camera.
struct InitParameters {
    RESOLUTION camera_resolution = RESOLUTION::AUTO;
    int camera_fps = 0;
    bool camera_image_flip = false;
    DEPTH_MODE depth_mode = DEPTH_MODE::PERFORMANCE;
    UNIT coordinate_units = UNIT::MILLIMETER;
    COORDINATE_SYSTEM coordinate_system = COORDINATE_SYSTEM::IMAGE;
    int verbosity = 1;
    int gpu_device_id = -1;
    float depth_minimum_distance = -1.f;
    float depth_maximum_distance = -1.f;
    bool disable_self_calibration = false;
    int image_rotation = 0;
    bool enable_right_side_measure = false;
    std::string settings_path;
    int image_buffer_count = 1;
    CUcontext cuda_context = nullptr;
    InputType input;
    std::string log_file_path;
    bool async_grab_recovery = false;
    bool enable_image_enhancement = true;
    std::string calibration_file_path;
    float open_timeout_sec = 5.f;
    bool async_image_retrieval = false;
    float max_grab_rate = 0.f;
    int image_validity_check = 0;
    bool sensors_only = false;

    // Not part of the constructor; callers set them afterwards.
    int stream_quality = 0;          // 0..10, image compression quality of the stream
    int depth_stabilization = 1;     // frames of depth smoothing
    int sensors_start_delay_ms = 0;  // delay before the sensor stream starts
    int image_downscale_x = 1;       // horizontal binning of the image stream
    int image_downscale_y = 1;       // vertical binning of the image stream
    int sensors_required = 0;        // 1: opening fails when the motion sensors do not answer
    int sensor_rate_percent = 100;   // share of the nominal IMU rate to stream

    InitParameters() = default;
    InitParameters(RESOLUTION resolution, int fps, bool imageFlip, DEPTH_MODE depthMode, UNIT units,
                   COORDINATE_SYSTEM coordinates, int verbosity, int gpuId, float depthMin,
                   float depthMax, bool disableSelfCalibration, int imageRotation,
                   bool rightSideMeasure, const std::string& settingsPath, int imageBufferCount,
                   CUcontext cudaContext, InputType input, const std::string& logFilePath,
                   bool asyncGrabRecovery, bool imageEnhancement,
                   const std::string& calibrationFilePath, float openTimeoutSec,
                   bool asyncImageRetrieval, float maxGrabRate, int imageValidityCheck,
                   bool sensorsOnly);
};

// Opening parameters of a single-sensor camera.
struct InitParametersOne {
    int stream_quality = 0;
    bool sensors_required = false;
    int image_downscale_x = 1;
    int image_downscale_y = 1;
    float open_timeout_sec = 5.f;
    std::uint16_t exposure_preset = 0;
    int image_buffer_count = 1;
    InputType input;
};

// Per-grab parameters of a stereo camera.
struct RuntimeParameters {
    bool enable_depth = true;
    bool enable_fill_mode = false;
    int confidence_threshold = 95;
    int texture_confidence_threshold = 100;
    REFERENCE_FRAME measure3D_reference_frame = REFERENCE_FRAME::CAMERA;
    bool remove_saturated_areas = true;

    RuntimeParameters() = default;
    RuntimeParameters(bool depth, bool fillMode, int confidence, int textureConfidence,
                      REFERENCE_FRAME frame, bool removeSaturated)
        : enable_depth(depth),
          enable_fill_mode(fillMode),
          confidence_threshold(confidence),
          texture_confidence_threshold(textureConfidence),
          measure3D_reference_frame(frame),
          remove_saturated_areas(removeSaturated) {}
};

// Whether a listed device can be opened now.
enum class CAMERA_STATE : int { AVAILABLE = 0, NOT_AVAILABLE = 1 };

struct DeviceProperties {
    CAMERA_STATE camera_state = CAMERA_STATE::NOT_AVAILABLE;
    int id = -1;
    std::string path;
    MODEL camera_model = MODEL::ORYX;
    unsigned int serial_number = 0;
    BUS_TYPE bus_type = BUS_TYPE::AUTO;
};

struct CameraConfiguration {
    Resolution resolution;
    float fps = 0.f;
    unsigned int firmware_version = 0;  // camera firmware
};

struct SensorsConfiguration {
    unsigned int firmware_version = 0;  // motion-sensor micro-controller firmware
    bool has_magnetometer = false;
    bool has_barometer = false;
    bool has_temperature_sensors = false;
};

struct CameraInformation {
    unsigned int serial_number = 0;
    MODEL camera_model = MODEL::ORYX;
    BUS_TYPE bus_type = BUS_TYPE::AUTO;
    CameraConfiguration camera_configuration;
    SensorsConfiguration sensors_configuration;
};

}  // namespace bw
