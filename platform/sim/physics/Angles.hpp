// Angle units of the camera layer. It stands in for the maker's SDK and shares nothing with the
// viewer, so it keeps its own.
#pragma once

namespace bw::sim {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegToRad = kPi / 180.0;

}  // namespace bw::sim
