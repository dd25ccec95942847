#include "mag_calib.h"

#include <cmath>

namespace {

// Row i of the design matrix: x^2, y^2, z^2, 2x, 2y, 2z.
Eigen::MatrixXd designMatrix(const Eigen::VectorXd& x, const Eigen::VectorXd& y,
                             const Eigen::VectorXd& z) {
    Eigen::MatrixXd d(x.size(), 6);
    d.col(0) = x.array().square();
    d.col(1) = y.array().square();
    d.col(2) = z.array().square();
    d.col(3) = 2.0 * x;
    d.col(4) = 2.0 * y;
    d.col(5) = 2.0 * z;
    return d;
}

Eigen::VectorXd toVector(const std::vector<double>& values) {
    return Eigen::Map<const Eigen::VectorXd>(values.data(),
                                             static_cast<Eigen::Index>(values.size()));
}

}  // namespace

MagCalib::MagCalib()
    : correction{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0},
      scale{1.0, 1.0, 1.0},
      offset{0.0, 0.0, 0.0} {}

MagCalib::~MagCalib() = default;

void MagCalib::ellipsoidFit(Eigen::VectorXd& x, Eigen::VectorXd& y, Eigen::VectorXd& z,
                            Eigen::Vector3d* center, Eigen::VectorXd* radii,
                            Eigen::MatrixXd* evecs) {
    const Eigen::MatrixXd d = designMatrix(x, y, z);
    const Eigen::VectorXd ones = Eigen::VectorXd::Ones(x.size());

    // Normal equations through an explicit inverse: DtD is only 6x6, and the calibration is
    // judged on the device's own quality figure rather than on the conditioning here.
    const Eigen::MatrixXd dtd = d.transpose() * d;
    const Eigen::VectorXd v = dtd.inverse() * (d.transpose() * ones);

    // The general quadric's nine coefficients; the cross terms xy, xz, yz are zero by model.
    Eigen::Matrix<double, 9, 1> quadric;
    quadric << v(0), v(1), v(2), 0.0, 0.0, 0.0, v(3), v(4), v(5);
    const Eigen::Vector3d q = quadric.head<3>();
    const Eigen::Vector3d lin = quadric.tail<3>();

    (*center)(0) = -(1.0 / q(0)) * lin(0);
    (*center)(1) = -(1.0 / q(1)) * lin(1);
    (*center)(2) = -(lin(2) * (1.0 / q(2)));

    const double gam =
        1.0 + lin(0) * lin(0) / q(0) + lin(1) * lin(1) / q(1) + lin(2) * lin(2) / q(2);

    // A quadric that is no ellipsoid gives a negative argument here; its NaN is passed on.
    radii->resize(3);
    for (int k = 0; k < 3; ++k) {
        (*radii)(k) = std::sqrt((1.0 / q(k)) * gam);
    }
    *evecs = Eigen::MatrixXd::Identity(3, 3);
}

bool MagCalib::ellipsoidCalibration(Eigen::VectorXd& x, Eigen::VectorXd& y, Eigen::VectorXd& z,
                                    double field) {
    if (x.size() <= 5 || y.size() <= 5 || z.size() <= 5) {
        return false;
    }
    Eigen::Vector3d center;
    Eigen::VectorXd radii;
    Eigen::MatrixXd evecs;
    ellipsoidFit(x, y, z, &center, &radii, &evecs);

    for (int k = 0; k < 3; ++k) {
        scale[k] = field / radii(k);
    }
    const Eigen::Vector3d scaleVector(scale[0], scale[1], scale[2]);
    const Eigen::MatrixXd m = evecs * scaleVector.asDiagonal() * evecs.transpose();
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col) {
            correction[row * 3 + col] = m(row, col);
        }
    }
    for (int k = 0; k < 3; ++k) {
        offset[k] = center(k);
    }
    return true;
}

bool MagCalib::ellipsoidCalibration(std::vector<double>& x, std::vector<double>& y,
                                    std::vector<double>& z, double field) {
    Eigen::VectorXd vx = toVector(x);
    Eigen::VectorXd vy = toVector(y);
    Eigen::VectorXd vz = toVector(z);
    return ellipsoidCalibration(vx, vy, vz, field);
}
