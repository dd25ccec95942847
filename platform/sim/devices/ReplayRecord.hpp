// Turning a recorded row back into the sensor record that the camera handed out when it was
// recorded, such that the viewer's own conversions give back the very numbers in the file.
#pragma once

#include <bw/sensors.hpp>

#include "RecordingFile.h"

namespace bw::sim {

// The timestamp t whose seconds, computed as the viewer does (double(t) / 1e9), equal the
// recorded seconds.
Timestamp timestampReadingBack(double seconds);

// A pose whose Euler angles, read as the viewer reads them, are the recorded ones in degrees.
Transform poseReadingBack(double xDeg, double yDeg, double zDeg);

// The record of one row. Groups the file lacks are reported unavailable.
void fillReplayedRecord(const recording::RecordingFile& file, const recording::Row& row,
                        SensorsData& out);

}  // namespace bw::sim
