// A cheap stand-in for a camera's left image, so that image views have something to show: a
// colour gradient, a horizon line that tilts with the camera's roll and the serial number as a
// row of blocks, one per bit, which tells cameras apart at a glance.
#pragma once

#include <bw/Camera.hpp>

namespace bw::sim {

// 640 pixels wide, as high as the sensor's aspect ratio asks.
ImageBGRA makeSyntheticImage(const Resolution& sensor, float rollRad, unsigned serial);

}  // namespace bw::sim
