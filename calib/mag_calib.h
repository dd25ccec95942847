#pragma once

#include <Eigen/Dense>
#include <vector>

// Hard-iron offset and per-axis scale of a magnetometer, from a cloud of raw samples taken while
// the camera is turned in every direction.
//
// The cloud is fitted with an ellipsoid whose axes are parallel to the sensor axes (no cross
// terms), so the correction is always diagonal: (raw_k - offset_k) * scale_k puts a sample on a
// sphere of radius `field`. Keep it that way: the dialog applies offset and scale only.
//
// Degenerate clouds (all samples in a plane, too few distinct directions) are not detected: the
// results then hold infinities or NaN, and the caller judges them.
class MagCalib {
public:
    MagCalib();
    virtual ~MagCalib();

    // Fits a*x^2 + b*y^2 + c*z^2 + 2d*x + 2e*y + 2f*z = 1 to the samples by least squares.
    // x, y and z hold the components of n samples each (n is not checked). Writes the centre,
    // the three semi-axes (radii resized to 3) and the axes (evecs resized to the 3x3 identity).
    void ellipsoidFit(Eigen::VectorXd& x, Eigen::VectorXd& y, Eigen::VectorXd& z,
                      Eigen::Vector3d* center, Eigen::VectorXd* radii, Eigen::MatrixXd* evecs);

    // Fits the samples and stores offset, scale and correction for a field of strength `field`.
    // Returns false, leaving the results as they were, when any vector has fewer than six
    // samples: the fit has six unknowns.
    bool ellipsoidCalibration(Eigen::VectorXd& x, Eigen::VectorXd& y, Eigen::VectorXd& z,
                              double field);
    bool ellipsoidCalibration(std::vector<double>& x, std::vector<double>& y,
                              std::vector<double>& z, double field);

    double correction[9];  // 3x3 soft-iron matrix, row-major; diag(scale) by construction
    double scale[3];       // field strength per input unit, per axis
    double offset[3];      // hard-iron offset: the ellipsoid's centre, in input units
};

