// Comparisons shared by the GL tests: vectors within a tolerance and pixel counts by colour.
#pragma once

#include <QColor>
#include <QImage>
#include <bw/geometry.hpp>
#include <cmath>
#include <cstdlib>

inline bool near(float a, float b, float eps = 1e-5f) { return std::fabs(a - b) <= eps; }

inline bool sameVec(const bw::Translation& a, const bw::Translation& b, float eps = 1e-5f) {
    return near(a.x, b.x, eps) && near(a.y, b.y, eps) && near(a.z, b.z, eps);
}

// Pixels whose red, green and blue each lie within tol of the colour's.
inline int countNear(const QImage& img, QColor c, int tol = 3) {
    int n = 0;
    for (int y = 0; y < img.height(); ++y) {
        for (int x = 0; x < img.width(); ++x) {
            const QColor p = img.pixelColor(x, y);
            if (std::abs(p.red() - c.red()) <= tol && std::abs(p.green() - c.green()) <= tol &&
                std::abs(p.blue() - c.blue()) <= tol) {
                ++n;
            }
        }
    }
    return n;
}
