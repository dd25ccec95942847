// Angle units of the viewer's own code.
#pragma once

constexpr double kPi = 3.141592653589793;

constexpr double degreesFromRadians(double radians) { return radians * 180.0 / kPi; }
constexpr double radiansFromDegrees(double degrees) { return degrees * kPi / 180.0; }
