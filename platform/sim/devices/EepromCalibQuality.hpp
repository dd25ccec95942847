// How well the calibration stored in a simulated camera's EEPROM cancels the camera's real
// magnetic distortion, as the micro-controller reports it in its pose record.
#pragma once

#include <bw/sim/DeviceConfig.hpp>

#include "Eeprom.hpp"

namespace bw::sim {

enum MagCalibStatus : int {
    MAG_CALIB_GOOD = 0,
    MAG_CALIB_OK = 1,
    MAG_CALIB_NOT_GOOD = 2,
    MAG_CALIB_NONE = 3
};

struct MagCalibAssessment {
    int status = MAG_CALIB_NONE;
    float quality = 0.f;  // 0 (useless) .. 1 (perfect)
};

// Turns an earth field of earthFieldUt through fixed directions over the whole sphere, distorts
// it as the camera does and corrects it with the stored calibration. A perfect calibration maps
// every direction onto one sphere centred on zero; the spread of the corrected magnitudes plus
// the offset of the centre, both relative to the mean magnitude, measure the error.
MagCalibAssessment assessMagCalibration(const DeviceConfig& config, const EepromContents& eeprom,
                                        float earthFieldUt);

}  // namespace bw::sim
