#include "MotionModel.hpp"

#include <algorithm>
#include <cmath>

#include "Angles.hpp"
#include "EarthModel.hpp"

namespace bw::sim {
namespace {

constexpr double kTwoPi = 2.0 * kPi;

// Gentle: handled for about 20 s, then set down for a few seconds, so that the moving state
// of the camera changes now and then.
constexpr double kGentleCycleMinS = 18.0;
constexpr double kGentleCycleMaxS = 24.0;
constexpr double kGentleStillS = 4.0;
constexpr double kGentleRampS = 2.0;
// How quickly the hand brings the camera back to level (1/s); keeps the sway to a few degrees
// instead of letting the integrated rate wander off.
constexpr double kGentleLevelingRate = 0.4;
constexpr double kHeadingSwayRad = 15.0 * kDegToRad;
constexpr double kHeadingSwayPeriodS = 45.0;

// Tumbling: the rotation axis wanders over the sphere within seconds while the speed stays
// between about 45 and 85 deg/s; a minute of it shows the magnetometer every direction.
constexpr double kTumbleSpeedRad = 65.0 * kDegToRad;
constexpr double kTumbleSpeedSwingRad = 20.0 * kDegToRad;
// Below this length of the wandering axis vector the speed is reduced rather than letting the
// normalised axis flip over abruptly.
constexpr double kTumbleAxisFloor = 0.6;

// Draws a harmonic of the given amplitude near a nominal frequency, with a random phase.
Harmonic drawHarmonic(noise::ParameterDraw& draw, double amplitude, double nominalHz) {
    return {amplitude, kTwoPi * nominalHz * draw.uniform(0.85, 1.15), draw.uniform(0.0, kTwoPi)};
}

// A rotation chosen uniformly over all rotations (Shoemake's subgroup algorithm).
Eigen::Quaterniond drawRotation(noise::ParameterDraw& draw) {
    const double u1 = draw.uniform(0.0, 1.0);
    const double u2 = draw.uniform(0.0, kTwoPi);
    const double u3 = draw.uniform(0.0, kTwoPi);
    const double a = std::sqrt(1.0 - u1);
    const double b = std::sqrt(u1);
    return Eigen::Quaterniond(b * std::cos(u3), a * std::sin(u2), a * std::cos(u2),
                              b * std::sin(u3));
}

// The rotation by the rotation vector v: the quaternion exponential of v / 2.
Eigen::Quaterniond rotationFromVector(const Eigen::Vector3d& v) {
    const double angle = v.norm();
    if (angle < 1e-12) return Eigen::Quaterniond(1.0, 0.5 * v.x(), 0.5 * v.y(), 0.5 * v.z());
    const double s = std::sin(0.5 * angle) / angle;
    return Eigen::Quaterniond(std::cos(0.5 * angle), s * v.x(), s * v.y(), s * v.z());
}

Eigen::Quaterniond headingRotation(double headingRad) {
    return Eigen::Quaterniond(std::cos(0.5 * headingRad), 0.0, 0.0, std::sin(0.5 * headingRad));
}

}  // namespace

MotionModel::MotionModel(MotionProfile profile, std::uint64_t seed,
                         std::optional<double> headingDeg)
    : profile_(profile) {
    noise::ParameterDraw draw(noise::key(seed, noise::Stream::MotionParameters));
    // Drawn even when given, so that the seed's other parameters stay the same. The heading
    // turns towards east, the yaw about the world's up axis towards west.
    const double drawnYaw = draw.uniform(-kPi, kPi);
    heading0_ = headingDeg ? -*headingDeg * kDegToRad : drawnYaw;
    pose_ = headingRotation(heading0_);
    switch (profile_) {
        case MotionProfile::Still:
            break;
        case MotionProfile::Gentle:
            setUpGentle(draw);
            setUpTranslation(draw);
            pose_ = gentleReference(0.0);
            break;
        case MotionProfile::Tumbling:
            setUpTumbling(draw);
            setUpTranslation(draw);
            pose_ = drawRotation(draw);
            break;
    }
    rate_ = rateAt(0.0);
}

void MotionModel::setUpGentle(noise::ParameterDraw& draw) {
    activity_ = ActivityEnvelope(draw.uniform(kGentleCycleMinS, kGentleCycleMaxS), kGentleStillS,
                                 kGentleRampS);
    // Roll and pitch sway a little more than the heading, as a hand does.
    sway_[0].terms = {drawHarmonic(draw, 6.0 * kDegToRad, 0.35),
                      drawHarmonic(draw, 3.0 * kDegToRad, 0.9)};
    sway_[1].terms = {drawHarmonic(draw, 5.0 * kDegToRad, 0.28),
                      drawHarmonic(draw, 3.0 * kDegToRad, 0.75)};
    sway_[2].terms = {drawHarmonic(draw, 4.0 * kDegToRad, 0.15),
                      drawHarmonic(draw, 2.0 * kDegToRad, 0.6)};
    headingSway_ = drawHarmonic(draw, kHeadingSwayRad, 1.0 / kHeadingSwayPeriodS);
}

void MotionModel::setUpTumbling(noise::ParameterDraw& draw) {
    // Incommensurate slow and faster terms per component make the axis wander without repeating.
    for (HarmonicSum<2>& component : sway_) {
        component.terms = {Harmonic{1.0, draw.uniform(0.15, 0.35), draw.uniform(0.0, kTwoPi)},
                           Harmonic{0.6, draw.uniform(0.4, 0.8), draw.uniform(0.0, kTwoPi)}};
    }
    tumbleSpeed_ = Harmonic{kTumbleSpeedSwingRad, draw.uniform(0.3, 0.5), draw.uniform(0, kTwoPi)};
}

void MotionModel::setUpTranslation(noise::ParameterDraw& draw) {
    // A few centimetres of hand movement; the height also drifts slowly by about ten centimetres.
    position_[0].terms = {drawHarmonic(draw, 0.015, 0.45), drawHarmonic(draw, 0.004, 1.0)};
    position_[1].terms = {drawHarmonic(draw, 0.012, 0.4), drawHarmonic(draw, 0.004, 0.9)};
    position_[2].terms = {drawHarmonic(draw, 0.05, 0.3), drawHarmonic(draw, 0.12, 0.07)};
}

void MotionModel::stepTo(double t) {
    if (t <= t_) return;
    const double dt = t - t_;
    const Eigen::Vector3d next = rateAt(t);
    // Trapezoidal rate over the step: second-order accurate, one rate evaluation per step.
    pose_ = (pose_ * rotationFromVector(0.5 * (rate_ + next) * dt)).normalized();
    rate_ = next;
    t_ = t;
}

Eigen::Quaterniond MotionModel::poseAt(double t) const {
    if (t <= t_) return pose_;
    return (pose_ * rotationFromVector(rate_ * (t - t_))).normalized();
}

Eigen::Vector3d MotionModel::specificForce() const {
    const Eigen::Vector3d up(0.0, 0.0, earth::kGravity);
    return pose_.conjugate() * (linearAcceleration(t_) + up);
}

Eigen::Vector3d MotionModel::linearAcceleration(double t) const {
    if (profile_ == MotionProfile::Still) return Eigen::Vector3d::Zero();
    // Position = activity * sway, differentiated twice with the product rule.
    const Smooth e = activity_.at(t);
    Eigen::Vector3d a;
    for (int i = 0; i < 3; ++i) {
        const Smooth s = position_[i].withDerivatives(t);
        a[i] = e.acceleration * s.value + 2.0 * e.rate * s.rate + e.value * s.acceleration;
    }
    return a;
}

double MotionModel::height(double t) const {
    if (profile_ == MotionProfile::Still) return 0.0;
    return activity_.at(t).value * position_[2].at(t);
}

Eigen::Vector3d MotionModel::rateAt(double t) const {
    switch (profile_) {
        case MotionProfile::Gentle:
            return gentleRate(t);
        case MotionProfile::Tumbling:
            return tumblingRate(t);
        case MotionProfile::Still:
            break;
    }
    return Eigen::Vector3d::Zero();
}

Eigen::Vector3d MotionModel::gentleRate(double t) const {
    const double activity = activity_.at(t).value;
    if (activity == 0.0) return Eigen::Vector3d::Zero();
    const Eigen::Vector3d sway(sway_[0].at(t), sway_[1].at(t), sway_[2].at(t));
    // Small-angle rotation vector from the reference pose to the current one, in camera axes.
    const Eigen::Quaterniond error = gentleReference(t).conjugate() * pose_;
    const Eigen::Vector3d offset = (error.w() < 0.0 ? -2.0 : 2.0) * error.vec();
    return activity * (sway - kGentleLevelingRate * offset);
}

Eigen::Quaterniond MotionModel::gentleReference(double t) const {
    return headingRotation(heading0_ + headingSway_.amplitude *
                                           std::sin(headingSway_.omega * t + headingSway_.phase));
}

Eigen::Vector3d MotionModel::tumblingRate(double t) const {
    const Eigen::Vector3d axis(sway_[0].at(t), sway_[1].at(t), sway_[2].at(t));
    const double speed =
        kTumbleSpeedRad +
        tumbleSpeed_.amplitude * std::sin(tumbleSpeed_.omega * t + tumbleSpeed_.phase);
    return speed * axis / std::max(axis.norm(), kTumbleAxisFloor);
}

}  // namespace bw::sim
