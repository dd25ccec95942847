// What a simulated camera keeps in its EEPROM: the magnetometer calibration, in the
// micro-controller's magnetometer axes d0, d1, d2.
#pragma once

#include <bw/geometry.hpp>

namespace bw::sim {

struct EepromContents {
    bool magCalibStored = false;
    Vector3<float> magScale{1.f, 1.f, 1.f};
    Vector3<float> magOffset{0.f, 0.f, 0.f};
    // Bumped by every write, so that values derived from the calibration know when to refresh.
    unsigned revision = 0;

    void storeMagCalibration(const Vector3<float>& scale, const Vector3<float>& offset);
    // Scales 1 and offsets 0: a calibration that changes nothing.
    bool isIdentityCalibration() const;
};

// (raw - offset) * scale per device axis with the stored calibration; raw unchanged while
// nothing is stored. µT in, calibrated units out.
Vector3<float> applyMagCalibration(const EepromContents& eeprom, const Vector3<float>& raw);

}  // namespace bw::sim
