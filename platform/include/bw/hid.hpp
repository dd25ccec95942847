// USB HID listing of the cameras' sensor micro-controllers: the devices hidapi finds, followed by
// the simulated ones.
#pragma once

#include <string>
#include <vector>

namespace bw {

struct HidDeviceRecord {
    unsigned short vendorId = 0;
    unsigned short productId = 0;
    unsigned short releaseNumber = 0;  // BCD, high byte major, low byte minor
    std::string serialNumber;
    std::string path;
    bool simulated = false;
};

// productId 0 lists every product of the vendor.
std::vector<HidDeviceRecord> hidEnumerate(unsigned short vendorId, unsigned short productId = 0);

}  // namespace bw
