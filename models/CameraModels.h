// What the viewer knows about each camera model: how it is opened, which sensors it carries, which
// mesh the orientation view draws for it and whether it has a sensor micro-controller. One row per
// model code; everything that depends on the model asks this table instead of testing codes.
#pragma once

#include <bw/ORYXmcu.hpp>
#include <bw/types.hpp>

// How a model is opened through the camera SDK.
enum class Opening {
    NEVER,                // not listed and not opened (the original ORYX)
    BY_SERIAL,            // stereo camera on USB, by serial number
    BY_ID,                // stereo camera on the GMSL bus, by camera id
    BY_ID_SINGLE_SENSOR,  // single-sensor camera on the GMSL bus, by camera id
};

// The camera meshes of the orientation view.
enum class CameraMesh { ORYX, ORYX_B, ORYX_C };

struct ModelInfo {
    bw::MODEL code;
    Opening opening;
    bool imu;  // accelerometer, gyroscope and fused orientation
    bool magnetometer;
    bool barometer;
    bool temperatures;  // onboard temperature sensors
    // USB HID product id of the sensor micro-controller; 0 for a camera without one.
    unsigned short microControllerProductId;
    CameraMesh mesh;

    bool isSingleSensor() const { return opening == Opening::BY_ID_SINGLE_SENSOR; }
    bool isListed() const { return opening != Opening::NEVER; }
    // Only stereo cameras report a camera firmware to check.
    bool hasCameraFirmware() const { return !isSingleSensor(); }
    // The calibration dialog talks to the micro-controller's magnetometer.
    bool canCalibrateMagnetometer() const { return microControllerProductId != 0 && magnetometer; }
};

// The row of a model code. Codes outside the family (such as the "no camera" value of the input
// module) get a row that is never opened and carries no sensors.
ModelInfo modelInfo(unsigned code);
inline ModelInfo modelInfo(bw::MODEL model) { return modelInfo(unsigned(model)); }

// Cameras with a micro-controller carry their model code as the leading digit of an eight-digit
// serial number.
bw::MODEL modelFromSerial(unsigned serial);

// The model whose micro-controller has this HID product id; a row that is never opened for
// an id of no model.
ModelInfo modelWithMicroController(unsigned short productId);

// Camera firmware at or below this version must be updated before the sensors are trusted.
constexpr unsigned kLastOutdatedCameraFirmware = 1141;
