#include "EepromCalibQuality.hpp"

#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <limits>

namespace bw::sim {

namespace {

constexpr int kDirections = 200;
constexpr double kPi = 3.14159265358979323846;
// Relative error at which the quality reaches 0, and the status thresholds.
constexpr double kZeroQualitySpread = 0.2;
constexpr double kGoodSpread = 0.02;
constexpr double kOkSpread = 0.05;

// Evenly spread unit vectors (Fibonacci sphere): no clusters at the poles, fixed for all calls.
Eigen::Vector3d sphereDirection(int i) {
    const double goldenAngle = kPi * (3.0 - std::sqrt(5.0));
    const double z = 1.0 - 2.0 * (i + 0.5) / kDirections;
    const double r = std::sqrt(1.0 - z * z);
    const double phi = goldenAngle * i;
    return {r * std::cos(phi), r * std::sin(phi), z};
}

Eigen::Vector3d toEigen(const Vector3<float>& v) { return {v.x, v.y, v.z}; }

// What the stored calibration makes of a true field: distort as the sensor does, then correct.
Eigen::Vector3d corrected(const Eigen::Vector3d& trueField, const Eigen::Vector3d& soft,
                          const Eigen::Vector3d& hard, const EepromContents& eeprom) {
    const Eigen::Vector3d raw = soft.cwiseProduct(trueField) + hard;
    return (raw - toEigen(eeprom.magOffset)).cwiseProduct(toEigen(eeprom.magScale));
}

double relativeError(const DeviceConfig& config, const EepromContents& eeprom, double earthUt) {
    const Eigen::Vector3d soft = toEigen(config.softIronScale);
    const Eigen::Vector3d hard = toEigen(config.hardIronOffset);
    double lo = std::numeric_limits<double>::max(), hi = 0.0, sum = 0.0;
    for (int i = 0; i < kDirections; ++i) {
        const double m = corrected(sphereDirection(i) * earthUt, soft, hard, eeprom).norm();
        lo = std::min(lo, m);
        hi = std::max(hi, m);
        sum += m;
    }
    const double mean = sum / kDirections;
    if (!(mean > 0.0)) {
        return std::numeric_limits<double>::infinity();  // everything collapsed: useless
    }
    const double centre = corrected(Eigen::Vector3d::Zero(), soft, hard, eeprom).norm();
    return (hi - lo) / mean + centre / mean;
}

}  // namespace

MagCalibAssessment assessMagCalibration(const DeviceConfig& config, const EepromContents& eeprom,
                                        float earthFieldUt) {
    if (!eeprom.magCalibStored || eeprom.isIdentityCalibration()) {
        return {};
    }
    double spread = relativeError(config, eeprom, earthFieldUt);
    if (!std::isfinite(spread)) {
        spread = std::numeric_limits<double>::infinity();  // NaN scales count as useless
    }
    MagCalibAssessment out;
    out.quality = static_cast<float>(std::clamp(1.0 - spread / kZeroQualitySpread, 0.0, 1.0));
    out.status = spread < kGoodSpread ? MAG_CALIB_GOOD
                 : spread < kOkSpread ? MAG_CALIB_OK
                                      : MAG_CALIB_NOT_GOOD;
    return out;
}

}  // namespace bw::sim
