#include "magcalibrecord.h"

#include <cstdlib>

#include "CameraModels.h"

namespace {

constexpr double kRadToDeg = 57.295779513;
constexpr std::uint8_t kRecordValid = 1;
// Values of the reader record's magnetometer-update byte; any other means a new sample.
constexpr std::uint8_t kNoMagData = 0;
constexpr std::uint8_t kNoNewMagSample = 1;

}  // namespace

MagAxes magAxesFromRaw(std::int16_t d0, std::int16_t d1, std::int16_t d2) {
    MagAxes a;
    a.x = -d1 * bw::MCU_MAG_UT_PER_COUNT;
    a.y = d0 * bw::MCU_MAG_UT_PER_COUNT;
    a.z = d2 * bw::MCU_MAG_UT_PER_COUNT;
    return a;
}

ReaderContent readerContent(const bw::_imu_reader_data& record) {
    if (record.valid != kRecordValid || record.mag_update == kNoMagData)
        return ReaderContent::NOTHING;
    if (record.mag_update == kNoNewMagSample) return ReaderContent::NO_NEW_SAMPLE;
    return ReaderContent::NEW_SAMPLE;
}

double readerTimeMs(const bw::_imu_reader_data& record) {
    const std::uint64_t ticks = record.timestamp;  // packed: copied before use
    return static_cast<double>(ticks) * bw::MCU_TICK_US / 1000.0;
}

PoseHeading headingFromPose(const bw::_imu_pose_data& pose, float libraryHeadingRad) {
    PoseHeading h;
    h.uncalibrated = libraryHeadingRad * kRadToDeg;
    h.calibStatus = pose.mag_calib_status;
    h.calibrated = h.calibStatus == MAG_CALIB_NONE ? h.uncalibrated : pose.mag_heading * kRadToDeg;
    h.calibQuality = pose.mag_calib_quality;
    return h;
}

bw::_mag_calib_data packMagCalib(const double offset[3], const double scale[3]) {
    bw::_mag_calib_data record;
    record.scale_d0 = static_cast<float>(scale[1]);
    record.scale_d1 = static_cast<float>(scale[0]);
    record.scale_d2 = static_cast<float>(scale[2]);
    record.offset_d0 = static_cast<float>(offset[1]);
    record.offset_d1 = static_cast<float>(-offset[0]);
    record.offset_d2 = static_cast<float>(offset[2]);
    return record;
}

void unpackMagCalib(const bw::_eeprom_data& image, double offset[3], double scale[3]) {
    offset[0] = -static_cast<double>(image.mag_offset[1]);
    offset[1] = image.mag_offset[0];
    offset[2] = image.mag_offset[2];
    scale[0] = image.mag_scale[1];
    scale[1] = image.mag_scale[0];
    scale[2] = image.mag_scale[2];
}

bool eepromHoldsRecord(const bw::_eeprom_data& image, const bw::_mag_calib_data& record) {
    // Packed members are copied into locals before comparing.
    const float stored[6] = {image.mag_scale[0],  image.mag_scale[1],  image.mag_scale[2],
                             image.mag_offset[0], image.mag_offset[1], image.mag_offset[2]};
    const float wanted[6] = {record.scale_d0,  record.scale_d1,  record.scale_d2,
                             record.offset_d0, record.offset_d1, record.offset_d2};
    for (int i = 0; i < 6; ++i) {
        if (!(stored[i] == wanted[i])) return false;
    }
    return true;
}

BwDeviceList filterMagDevices(const std::vector<bw::HidDeviceRecord>& devices) {
    BwDeviceList list;
    for (const bw::HidDeviceRecord& device : devices) {
        const unsigned serial =
            static_cast<unsigned>(std::strtoul(device.serialNumber.c_str(), nullptr, 10));
        // Some firmware reports product id 0: the serial's model digit tells the model then.
        const ModelInfo model = device.productId != 0 ? modelWithMicroController(device.productId)
                                                      : modelInfo(modelFromSerial(serial));
        if (!model.canCalibrateMagnetometer()) continue;
        const unsigned short productId = model.microControllerProductId;
        list.productIds.append(productId);
        list.serials.append(QStringLiteral("%1").arg(serial));
        list.firmware.append(QStringLiteral("v%1.%2")
                                 .arg(device.releaseNumber >> 8)
                                 .arg(device.releaseNumber & 0xFF));
    }
    return list;
}
