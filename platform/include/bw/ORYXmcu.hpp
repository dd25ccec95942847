// Raw access to a camera's sensor micro-controller: its sample records, its fused pose record
// and its EEPROM. Records are byte-exact device layouts (packed, little-endian).
#pragma once

#include <bw/geometry.hpp>
#include <bw/types.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace bw {

// USB identity of the camera family's sensor micro-controllers.
constexpr unsigned short ORYX_USB_VENDOR_ID = 0x3B17;
constexpr unsigned short MCU_PID_ORYX_B = 0xB101;
constexpr unsigned short MCU_PID_ORYX_C = 0xB102;
constexpr unsigned short MCU_PID_ORYX_D = 0xB103;

// One device tick of the micro-controller clock, in microseconds.
constexpr double MCU_TICK_US = 39.0;
// One raw magnetometer count, in microtesla.
constexpr double MCU_MAG_UT_PER_COUNT = 1.0 / 16.0;

// Output data rate of the IMU.
enum _imu_odr : int { IMU_ODR_100HZ = 0, IMU_ODR_200HZ = 1, IMU_ODR_400HZ = 2, IMU_ODR_800HZ = 3 };

#pragma pack(push, 1)

// Magnetometer calibration as stored in the EEPROM, in the device's own magnetometer axes
// d0, d1, d2. Corrected value = (raw - offset) * scale, raw in µT.
struct _mag_calib_data {
    std::uint8_t command = 0;  // write command byte, filled by the device library
    float scale_d0 = 1.f;
    float scale_d1 = 1.f;
    float scale_d2 = 1.f;
    float offset_d0 = 0.f;
    float offset_d1 = 0.f;
    float offset_d2 = 0.f;
};

// The newest raw sample of the micro-controller.
struct _imu_reader_data {
    std::uint8_t valid;             // 1 when the record holds a sample
    std::uint8_t imu_update;        // 0 no IMU data, 1 no new sample, 2 new sample
    std::uint64_t timestamp;        // device ticks of MCU_TICK_US
    std::int16_t acc[3];            // raw accelerometer counts
    std::int16_t gyro[3];           // raw gyroscope counts
    std::int16_t imu_temperature;   // 1/100 °C
    std::int32_t pressure;          // Pa
    std::int16_t baro_temperature;  // 1/100 °C
    std::uint8_t mag_update;        // 0 no magnetometer data, 1 no new sample, 2 new sample
    std::int16_t mag[3];            // raw magnetometer counts of MCU_MAG_UT_PER_COUNT, axes d0..d2
    std::uint8_t sync;              // frame synchronisation counter
    std::uint8_t reserved[26];
};

// The micro-controller's fused pose and magnetometer state.
struct _imu_pose_data {
    std::uint8_t valid;
    std::uint8_t reserved0[3];
    std::uint64_t timestamp;  // device ticks
    float orientation[4];     // quaternion x, y, z, w
    float euler[3];           // rad
    float acc[3];             // m/s², camera frame
    float gyro[3];            // rad/s, camera frame
    float linear_acc[3];      // m/s², gravity removed
    float reserved1[12];
    float gravity[3];  // offset 124: gravity direction in the device's mag axes
    float reserved2[25];
    float mag[3];                   // offset 236: magnetic field, µT, device's mag axes
    float mag_calibrated[3];        // offset 248: with the stored calibration applied
    std::int32_t mag_calib_status;  // offset 260: 0 good, 1 ok, 2 not good, 3 not calibrated
    float mag_calib_quality;        // offset 264: 0 (bad) .. 1 (perfect)
    float mag_heading;              // offset 268: heading in rad with the stored calibration
    std::uint8_t reserved3[4];
};

// The device object's copy of the EEPROM contents.
struct _eeprom_data {
    std::uint16_t layout_version;
    std::uint32_t serial_number;
    std::uint8_t model;
    std::uint8_t mag_calib_stored;  // 1 once a calibration has been written
    float mag_scale[3];             // d0, d1, d2
    float mag_offset[3];            // d0, d1, d2
    std::uint8_t reserved[224];
};

#pragma pack(pop)

static_assert(sizeof(_mag_calib_data) == 25, "mag calibration record layout");
static_assert(offsetof(_mag_calib_data, scale_d0) == 1, "mag calibration record layout");
static_assert(offsetof(_mag_calib_data, offset_d0) == 13, "mag calibration record layout");
static_assert(offsetof(_imu_reader_data, timestamp) == 2, "IMU reader record layout");
static_assert(offsetof(_imu_reader_data, mag_update) == 30, "IMU reader record layout");
static_assert(offsetof(_imu_reader_data, mag) == 31, "IMU reader record layout");
static_assert(offsetof(_imu_pose_data, gravity) == 124, "pose record layout");
static_assert(offsetof(_imu_pose_data, mag) == 236, "pose record layout");
static_assert(offsetof(_imu_pose_data, mag_calib_status) == 260, "pose record layout");
static_assert(offsetof(_imu_pose_data, mag_calib_quality) == 264, "pose record layout");
static_assert(offsetof(_imu_pose_data, mag_heading) == 268, "pose record layout");

// Result codes of the micro-controller calls; 0 is success.
enum MCU_RESULT : int {
    MCU_OK = 0,
    MCU_NOT_FOUND = 1,
    MCU_OPEN_FAILED = 2,
    MCU_NOT_OPEN = 3,
    MCU_IO_ERROR = 4,
    MCU_DISCONNECTED = 5,
};

class ORYXmcu {
public:
    ORYXmcu(bool verbose, unsigned short vendorId, MODEL model, bool autoReconnect,
            std::string logFilePath);
    ~ORYXmcu();
    ORYXmcu(const ORYXmcu&) = delete;
    ORYXmcu& operator=(const ORYXmcu&) = delete;

    // accelRange/gyroRange: full scale to set (null keeps the device's); both may be null.
    int open(unsigned int serial, bool factoryReset, _imu_odr odr, float* accelRange,
             float* gyroRange, bool enableMagnetometer, bool verbose);
    void close();
    bool isOpen() const;

    // rateLimitHz 0: stream at the device's own rate.
    int startCapture(float rateLimitHz);
    void stopCapture();
    bool isCapturing() const;

    _imu_reader_data getIMUReaderData();
    _imu_pose_data getIMUPose(int fusionMode);

    // Tilt-compensated heading in radians, in [-pi, pi], of a magnetic field and a gravity
    // direction given in the device's magnetometer axes.
    float calcMagHeading(Vector3<float> magField, Vector3<float> gravity) const;

    // Re-reads the EEPROM into eeprom(); forceRead bypasses the library's cache.
    int updateEepromMemory(bool forceRead);
    const _eeprom_data& eeprom() const;
    int writeMagCalibInEEprom(_mag_calib_data& data);

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
};

}  // namespace bw
