// The camera motion state as the IMU firmware judges it from its own readings: static once the
// rate has been small and the specific force close to 1 g for a little while, falling when the
// specific force almost vanishes, moving otherwise.
#pragma once

#include <bw/geometry.hpp>
#include <bw/sensors.hpp>
#include <cmath>
#include <cstdint>

#include "EarthModel.hpp"

namespace bw::sim {

class MotionStateDetector {
public:
    static constexpr double kStillRateDegS = 1.0;
    static constexpr double kStillForceTolerance = 0.2;  // m/s² around 1 g
    static constexpr double kFallingForce = 2.0;         // m/s²
    static constexpr std::uint64_t kSettleNs = 250'000'000ull;

    // Forgets the past: the camera counts as having moved at ns.
    void restart(std::uint64_t ns) { lastMovementNs_ = ns; }

    int update(std::uint64_t ns, const Vector3<float>& acc, const Vector3<float>& gyroDegS) {
        using State = SensorsData::CAMERA_MOTION_STATE;
        const double force = norm(acc);
        if (force < kFallingForce) {
            lastMovementNs_ = ns;
            return static_cast<int>(State::FALLING);
        }
        const bool calm = norm(gyroDegS) < kStillRateDegS &&
                          std::abs(force - earth::kGravity) < kStillForceTolerance;
        if (!calm) lastMovementNs_ = ns;
        const bool settled = calm && ns - lastMovementNs_ >= kSettleNs;
        return static_cast<int>(settled ? State::STATIC : State::MOVING);
    }

private:
    static double norm(const Vector3<float>& v) {
        return std::sqrt(double(v.x) * v.x + double(v.y) * v.y + double(v.z) * v.z);
    }

    std::uint64_t lastMovementNs_ = 0;
};

}  // namespace bw::sim
