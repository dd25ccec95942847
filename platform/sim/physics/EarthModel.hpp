// The simulated environment around a camera: gravity, the earth's magnetic field and the
// standard atmosphere. World frame: z up, x towards magnetic north, y west.
#pragma once

#include <Eigen/Core>
#include <cmath>

namespace bw::sim::earth {

constexpr double kGravity = 9.80665;  // m/s²

// A mid-latitude field: 22 µT towards north, 42 µT pointing down, about 47 µT in total.
constexpr double kFieldNorthUt = 22.0;
constexpr double kFieldUpUt = -42.0;
inline Eigen::Vector3d magneticFieldWorld() { return {kFieldNorthUt, 0.0, kFieldUpUt}; }
inline double magneticFieldMagnitude() { return std::hypot(kFieldNorthUt, kFieldUpUt); }

// International standard atmosphere, troposphere.
constexpr double kSeaLevelPressurePa = 101325.0;
constexpr double kLapseOverT0 = 0.0065 / 288.15;  // 1/m
constexpr double kPressureExponent = 5.255877;    // g M / (R L)

// Pressure at an altitude for a given sea-level pressure (the weather moves the latter).
inline double pressureAt(double altitudeM, double seaLevelPa) {
    return seaLevelPa * std::pow(1.0 - kLapseOverT0 * altitudeM, kPressureExponent);
}

// Altitude a barometer derives from a pressure: it does not know the weather and assumes the
// standard sea-level pressure, as real devices do.
inline double altitudeFromPressure(double pressurePa) {
    return (1.0 - std::pow(pressurePa / kSeaLevelPressurePa, 1.0 / kPressureExponent)) /
           kLapseOverT0;
}

}  // namespace bw::sim::earth
