#include "MagSampleSet.h"

#include <Eigen/Core>
#include <cmath>

#include "mag_calib.h"

namespace {

// The refit waits for more than this many samples...
constexpr int kSamplesBeforeFirstRefit = 100;
// ...and then for at least this many new ones.
constexpr int kNewSamplesPerRefit = 50;
// The corrected samples lie on a sphere of this radius.
constexpr double kUnitField = 1.0;

// A cloud that fixes no ellipsoid (all samples on one circle, as when the camera was turned
// about one axis only) gives a singular or indefinite fit: infinities, NaN or a scale that is
// not positive. Stored in the EEPROM, such a correction would wreck every heading.
bool describesAnEllipsoid(const MagCalib& calib) {
    for (int axis = 0; axis < 3; ++axis) {
        if (!std::isfinite(calib.offset[axis]) || !std::isfinite(calib.scale[axis]) ||
            calib.scale[axis] <= 0.0)
            return false;
    }
    return true;
}

Eigen::VectorXd toEigen(const QVector<double>& v) {
    return Eigen::Map<const Eigen::VectorXd>(v.constData(), v.size());
}

}  // namespace

void MagSampleSet::append(const MagAxes& raw) {
    rawSamples[0].append(raw.x);
    rawSamples[1].append(raw.y);
    rawSamples[2].append(raw.z);
}

void MagSampleSet::clear() {
    for (int axis = 0; axis < 3; ++axis) {
        rawSamples[axis].clear();
        corrected[axis].clear();
    }
    refitCount = 0;
    current = MagCorrection();
}

bool MagSampleSet::fit() {
    Eigen::VectorXd x = toEigen(rawSamples[0]);
    Eigen::VectorXd y = toEigen(rawSamples[1]);
    Eigen::VectorXd z = toEigen(rawSamples[2]);
    MagCalib calib;
    if (!calib.ellipsoidCalibration(x, y, z, kUnitField) || !describesAnEllipsoid(calib))
        return false;
    for (int axis = 0; axis < 3; ++axis) {
        current.offset[axis] = calib.offset[axis];
        current.scale[axis] = calib.scale[axis];
    }
    applyCorrection();
    return true;
}

bool MagSampleSet::refitDue() const {
    const int n = size();
    return n > kSamplesBeforeFirstRefit && n - refitCount >= kNewSamplesPerRefit;
}

void MagSampleSet::applyCorrection() {
    for (int axis = 0; axis < 3; ++axis) {
        const QVector<double>& in = rawSamples[axis];
        QVector<double>& out = corrected[axis];
        out.clear();
        out.reserve(in.size());
        for (double value : in) out.append((value - current.offset[axis]) * current.scale[axis]);
    }
}
