// HID listing: what hidapi finds on the machine's USB buses, followed by the sensor
// micro-controllers of the plugged virtual cameras.
#include <hidapi/hidapi.h>

#include <bw/ORYXmcu.hpp>
#include <bw/hid.hpp>
#include <cwchar>
#include <string>

#include "devices/Bus.hpp"

namespace bw {

namespace {

// hidapi hands out serial strings as wchar_t (UTF-32 here); everything else speaks UTF-8.
std::string toUtf8(const wchar_t* text) {
    std::string out;
    for (; text && *text; ++text) {
        const auto c = static_cast<std::uint32_t>(*text);
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

void appendHardware(unsigned short vendorId, unsigned short productId,
                    std::vector<HidDeviceRecord>& out) {
    // Without USB access (containers, no permissions) hidapi finds nothing; that is no error.
    // hidapi's USB back end runs an event thread from hid_init to hid_exit: a listing is rare
    // (a calibration dialog opening), so the library is released again right after it rather
    // than left running until the process exits.
    if (hid_init() != 0) {
        return;
    }
    struct ReleaseHidapi {
        ~ReleaseHidapi() { hid_exit(); }
    } releaseHidapi;
    hid_device_info* list = hid_enumerate(vendorId, productId);
    for (const hid_device_info* d = list; d; d = d->next) {
        HidDeviceRecord r;
        r.vendorId = d->vendor_id;
        r.productId = d->product_id;
        r.releaseNumber = d->release_number;
        r.serialNumber = toUtf8(d->serial_number);
        r.path = d->path ? d->path : "";
        out.push_back(r);
    }
    hid_free_enumeration(list);
}

unsigned short productIdOf(MODEL model) {
    switch (model) {
        case MODEL::ORYX_B:
            return MCU_PID_ORYX_B;
        case MODEL::ORYX_C:
            return MCU_PID_ORYX_C;
        case MODEL::ORYX_D:
            return MCU_PID_ORYX_D;
        default:
            return 0;
    }
}

void appendSimulated(unsigned short productId, std::vector<HidDeviceRecord>& out) {
    for (const auto& device : sim::BusAccess::devices()) {
        const unsigned short pid = productIdOf(device->model());
        if (pid == 0) {
            continue;  // no micro-controller on this model
        }
        const auto state = device->lock();
        const unsigned short reported = state->hidProductIdZero ? 0 : pid;
        if (!state->plugged || (productId != 0 && productId != reported)) {
            continue;
        }
        HidDeviceRecord r;
        r.vendorId = ORYX_USB_VENDOR_ID;
        r.productId = reported;
        r.releaseNumber = state->config().mcuRelease;
        r.serialNumber = std::to_string(device->serial());
        r.path = "sim:" + r.serialNumber;
        r.simulated = true;
        out.push_back(r);
    }
}

}  // namespace

std::vector<HidDeviceRecord> hidEnumerate(unsigned short vendorId, unsigned short productId) {
    std::vector<HidDeviceRecord> out;
    appendHardware(vendorId, productId, out);
    if (vendorId == ORYX_USB_VENDOR_ID) {
        appendSimulated(productId, out);
    }
    return out;
}

}  // namespace bw
