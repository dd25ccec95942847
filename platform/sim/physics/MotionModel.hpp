// Deterministic motion of one simulated camera, fixed by its motion profile and seed.
//
// Frames. World: z up, x towards magnetic north, y west. Camera (body) frame: x forward along
// the optical axis, y to the left, z up when the camera stands level, so a camera at rest reads
// a specific force of (0, 0, +9.81) m/s². The pose is the rotation taking camera coordinates to
// world coordinates.
//
// The orientation is integrated from the angular rate with the quaternion exponential at the
// instants the IMU samples, so the pose and the rate the gyroscope reports agree up to the
// integration error of one IMU period. The translation is a closed-form function of time, which
// lets the barometer sample it at its own instants.
#pragma once

#include <Eigen/Core>
#include <Eigen/Geometry>
#include <array>
#include <bw/sim/DeviceConfig.hpp>
#include <cstdint>
#include <optional>

#include "ActivityEnvelope.hpp"
#include "Harmonics.hpp"
#include "Noise.hpp"

namespace bw::sim {

class MotionModel {
public:
    // headingDeg: where a still or gentle camera faces, clockwise from north; absent: drawn
    // from the seed.
    MotionModel(MotionProfile profile, std::uint64_t seed,
                std::optional<double> headingDeg = std::nullopt);

    // Integrates the orientation up to t seconds after the start; a t before time() is ignored.
    // Callers step at every IMU instant: the step must stay short for the integration to hold.
    void stepTo(double t);

    double time() const { return t_; }
    const Eigen::Quaterniond& pose() const { return pose_; }
    // rad/s, camera frame, at time().
    const Eigen::Vector3d& angularVelocity() const { return rate_; }
    // The pose a little after time(), carried on with the current rate: for sensors that sample
    // between two IMU instants.
    Eigen::Quaterniond poseAt(double t) const;
    // What an ideal accelerometer reads at time(): camera frame, m/s², gravity included.
    Eigen::Vector3d specificForce() const;

    // Translation of the camera in the world frame, relative to where it started out.
    Eigen::Vector3d linearAcceleration(double t) const;  // m/s², gravity excluded
    double height(double t) const;                       // m

private:
    void setUpGentle(noise::ParameterDraw& draw);
    void setUpTumbling(noise::ParameterDraw& draw);
    void setUpTranslation(noise::ParameterDraw& draw);
    Eigen::Vector3d rateAt(double t) const;
    Eigen::Vector3d gentleRate(double t) const;
    Eigen::Vector3d tumblingRate(double t) const;
    Eigen::Quaterniond gentleReference(double t) const;

    MotionProfile profile_;
    ActivityEnvelope activity_;
    // Gentle: hand sway rates per camera axis (rad/s) and the slowly wandering heading the hand
    // returns to. Tumbling: the components of the wandering rotation axis and its speed.
    std::array<HarmonicSum<2>, 3> sway_{};
    Harmonic headingSway_{};
    Harmonic tumbleSpeed_{};
    // Translation per world axis (m).
    std::array<HarmonicSum<2>, 3> position_{};
    double heading0_ = 0.0;

    double t_ = 0.0;
    Eigen::Quaterniond pose_ = Eigen::Quaterniond::Identity();
    Eigen::Vector3d rate_ = Eigen::Vector3d::Zero();
};

}  // namespace bw::sim
