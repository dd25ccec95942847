// Where a compass needle points, read from a picture of the compass alone: the direction of the
// tip of its red (north) half from the dial's centre, in degrees clockwise from up, the way a
// heading is drawn.
#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <cmath>
#include <optional>

namespace needle {

// The needle's red; the dark red face and frame of the raw compass stay below it.
inline bool isNeedleRed(const QColor& c) {
    return c.red() > 180 && c.green() < 80 && c.blue() < 80;
}

// The red pixel farthest from the picture's centre (the dial is centred in its widget), as a
// heading; none when fewer than `minPixels` red pixels show.
inline std::optional<double> headingOf(const QImage& compass, int minPixels = 20) {
    const QPointF centre(compass.width() / 2.0, compass.height() / 2.0);
    QPointF tip;
    double farthest = -1.0;
    int red = 0;
    for (int y = 0; y < compass.height(); ++y)
        for (int x = 0; x < compass.width(); ++x) {
            if (!isNeedleRed(compass.pixelColor(x, y))) continue;
            ++red;
            const QPointF offset = QPointF(x + 0.5, y + 0.5) - centre;
            const double distance = std::hypot(offset.x(), offset.y());
            if (distance > farthest) {
                farthest = distance;
                tip = offset;
            }
        }
    if (red < minPixels) return std::nullopt;
    // Screen y grows downwards: up is -y, and clockwise turns from up towards +x.
    return std::atan2(tip.x(), -tip.y()) * 180.0 / M_PI;
}

// The difference a - b of two headings, folded into -180..180.
inline double headingDifference(double a, double b) { return std::remainder(a - b, 360.0); }

}  // namespace needle
