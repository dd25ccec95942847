#include "RecordingColumns.h"

namespace recording {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, kColumnCount> kTitles = {
    "idx",
    "imu_Timestamp[sec]",
    "mag_Timestamp[sec]",
    "baro_Timestamp[sec]",
    "accX[m/s^2]",
    "accY[m/s^2]",
    "accZ[m/s^2]",
    "gyroX[deg/s]",
    "gyroY[deg/s]",
    "gyroZ[deg/s]",
    "magX[uT]",
    "magY[uT]",
    "magZ[uT]",
    "orX[deg]",
    "orY[deg]",
    "orZ[deg]",
    "press[hPa]",
    "rel_alt[m]",
    "moving",
    "temp_left[C]",
    "temp_right[C]",
    "temp_imu[C]",
    "temp_barom[C]",
};

}  // namespace

std::string_view titleOf(Column column) { return kTitles[static_cast<std::size_t>(column)]; }

std::optional<Column> columnTitled(std::string_view title) {
    for (int i = 0; i < kColumnCount; ++i) {
        if (kTitles[static_cast<std::size_t>(i)] == title) return static_cast<Column>(i);
    }
    return std::nullopt;
}

}  // namespace recording
