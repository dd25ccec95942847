#pragma once

// Pure pieces of the magnetometer calibration: the mapping between the device's raw magnetometer
// axes (d0, d1, d2) and the dialog's axes (x, y, z), what a reader record and a pose record tell
// the calibration, the EEPROM record built from a calibration and read back from the device
// image, and the filter that picks the magnetometer-equipped cameras out of the HID listing.

#include <QString>
#include <QVector>
#include <bw/ORYXmcu.hpp>
#include <bw/hid.hpp>
#include <cstdint>
#include <vector>

// The device's verdict on the magnetometer calibration it holds, from its pose record.
enum MagCalibStatus : int {
    MAG_CALIB_GOOD = 0,
    MAG_CALIB_OK = 1,
    MAG_CALIB_NOT_GOOD = 2,
    MAG_CALIB_NONE = 3,     // not calibrated: the device's heading is the uncalibrated one
    MAG_CALIB_UNKNOWN = 4,  // no pose record read yet; any code the device does not define
};

// The fusion mode in which the pose record is asked for. Which sensors each mode fuses is the
// device library's business; this one carries the field, gravity and heading the calibration
// reads.
constexpr int kHeadingPoseMode = 6;

struct MagAxes {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

// x = -d1, y = d0, z = d2, each count times bw::MCU_MAG_UT_PER_COUNT. The sign of x is part of the
// device convention: stored calibrations depend on it.
MagAxes magAxesFromRaw(std::int16_t d0, std::int16_t d1, std::int16_t d2);

// What a reader record holds for the calibration: nothing usable (an invalid record, or no
// magnetometer data), the sample already read, or a new one.
enum class ReaderContent { NOTHING, NO_NEW_SAMPLE, NEW_SAMPLE };
ReaderContent readerContent(const bw::_imu_reader_data& record);

// The record's device time in milliseconds.
double readerTimeMs(const bw::_imu_reader_data& record);

// The two headings in degrees and the device's verdict, from one pose record.
struct PoseHeading {
    double uncalibrated = 0.0;  // the library's heading of the pose's raw field
    double calibrated = 0.0;    // the device's heading with its stored calibration
    int calibStatus = MAG_CALIB_UNKNOWN;
    float calibQuality = 0.f;
};

// `libraryHeadingRad` is the library's heading (calcMagHeading) of the pose's raw field and
// gravity. Without a stored calibration the device's own heading is not used: both are the
// library's.
PoseHeading headingFromPose(const bw::_imu_pose_data& pose, float libraryHeadingRad);

// The record written to the EEPROM for a calibration in the dialog's axes:
// scale d0 = y, d1 = x, d2 = z; offset d0 = y, d1 = -x, d2 = z (rounded to float).
bw::_mag_calib_data packMagCalib(const double offset[3], const double scale[3]);

// The reverse of packMagCalib, from the device's EEPROM image.
void unpackMagCalib(const bw::_eeprom_data& image, double offset[3], double scale[3]);

// True when the six floats of the image equal those of the record exactly.
bool eepromHoldsRecord(const bw::_eeprom_data& image, const bw::_mag_calib_data& record);

// The cameras the dialog can calibrate, in listing order.
struct BwDeviceList {
    QVector<QString> firmware;           // "v<major>.<minor>" from the HID release number
    QVector<QString> serials;            // decimal text
    QVector<unsigned short> productIds;  // MCU_PID_ORYX_C or MCU_PID_ORYX_D
};

// Keeps the ORYX_C / ORYX_D micro-controllers. A product id of 0 is derived from the serial's
// model digit (serial / 10,000,000: 3 -> D, 2 -> C, 1 -> B).
BwDeviceList filterMagDevices(const std::vector<bw::HidDeviceRecord>& devices);
