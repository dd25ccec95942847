#include "Eeprom.hpp"

namespace bw::sim {

void EepromContents::storeMagCalibration(const Vector3<float>& scale,
                                         const Vector3<float>& offset) {
    magScale = scale;
    magOffset = offset;
    magCalibStored = true;
    ++revision;
}

bool EepromContents::isIdentityCalibration() const {
    return magScale == Vector3<float>(1.f, 1.f, 1.f) && magOffset == Vector3<float>(0.f, 0.f, 0.f);
}

Vector3<float> applyMagCalibration(const EepromContents& eeprom, const Vector3<float>& raw) {
    if (!eeprom.magCalibStored) {
        return raw;
    }
    Vector3<float> out;
    for (int i = 0; i < 3; ++i) {
        out[i] = (raw[i] - eeprom.magOffset[i]) * eeprom.magScale[i];
    }
    return out;
}

}  // namespace bw::sim
