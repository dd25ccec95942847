// The motion and environment sensor record of a camera.
#pragma once

#include <bw/geometry.hpp>
#include <bw/types.hpp>

namespace bw {

struct SensorsData {
    struct IMUData {
        bool is_available = false;
        Timestamp timestamp = 0;             // ns
        Transform pose;                      // fused orientation of the camera in the world
        Vector3<float> linear_acceleration;  // m/s², camera frame, gravity included
        Vector3<float> angular_velocity;     // deg/s, camera frame
        float effective_rate = 0.f;          // Hz, measured by the device
    };

    struct MagnetometerData {
        bool is_available = false;
        Timestamp timestamp = 0;                     // ns
        Vector3<float> magnetic_field_calibrated;    // µT, corrected by the stored calibration
        Vector3<float> magnetic_field_uncalibrated;  // µT, as measured
        float effective_rate = 0.f;                  // Hz
    };

    struct BarometerData {
        bool is_available = false;
        Timestamp timestamp = 0;        // ns
        float pressure = 0.f;           // Pa
        float relative_altitude = 0.f;  // m, from the height at opening
        float effective_rate = 0.f;     // Hz
    };

    struct TemperatureData {
        enum class SENSOR_LOCATION : int {
            IMU = 0,
            BAROMETER = 1,
            ONBOARD_LEFT = 2,
            ONBOARD_RIGHT = 3,
            LAST = 4,
        };
        // SENSORS_NOT_AVAILABLE when the camera has no sensor at that location.
        ERROR_CODE get(SENSOR_LOCATION location, float& celsius) const;

        float value[4] = {0.f, 0.f, 0.f, 0.f};
        bool available[4] = {false, false, false, false};
    };

    enum class CAMERA_MOTION_STATE : int { STATIC = 0, MOVING = 1, FALLING = 2 };

    IMUData imu;
    MagnetometerData magnetometer;
    BarometerData barometer;
    TemperatureData temperature;
    CAMERA_MOTION_STATE camera_moving_state = CAMERA_MOTION_STATE::STATIC;
};

}  // namespace bw
