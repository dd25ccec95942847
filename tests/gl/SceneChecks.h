// Comparisons shared by the GL tests: vectors within a tolerance and pixel counts by colour.
#pragma once

#include <QColor>
#include <QImage>
#include <bw/geometry.hpp>
#include <cmath>
#include <cstdlib>

#include "ComposedWindow.h"

inline bool near(float a, float b, float eps = 1e-5f) { return std::fabs(a - b) <= eps; }

inline bool sameVec(const bw::Translation& a, const bw::Translation& b, float eps = 1e-5f) {
    return near(a.x, b.x, eps) && near(a.y, b.y, eps) && near(a.z, b.z, eps);
}

using composed::countNear;
