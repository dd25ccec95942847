#include "magcalibrecord.h"

#include <cstdlib>

#include "CameraModels.h"

MagAxes magAxesFromRaw(std::int16_t d0, std::int16_t d1, std::int16_t d2) {
    MagAxes a;
    a.x = -d1 * kMagFieldPerCount;
    a.y = d0 * kMagFieldPerCount;
    a.z = d2 * kMagFieldPerCount;
    return a;
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
