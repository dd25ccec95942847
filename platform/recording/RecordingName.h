// The camera that a recording's file name names: the recorder calls its files
// "yyyyMMdd_HHmmss-<model>-sn_<serial>-ORYXSensorsData.csv".
#pragma once

#include <optional>
#include <string>

namespace recording {

struct NamedCamera {
    std::string model;  // as written, e.g. "ORYX_D"
    unsigned serial = 0;
};

// None when the name is not of that shape, exactly: fifteen digits of date and time, a model
// text of letters, digits and underscores, a decimal serial number.
std::optional<NamedCamera> cameraNamedIn(const std::string& path);

// The file name without its folder.
std::string fileNameOf(const std::string& path);

}  // namespace recording
