// The columns a sensor recording can hold, by the titles the recorder writes in its header.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace recording {

enum class Column : int {
    INDEX,
    IMU_TIME,
    MAG_TIME,
    BARO_TIME,
    ACC_X,
    ACC_Y,
    ACC_Z,
    GYRO_X,
    GYRO_Y,
    GYRO_Z,
    MAG_X,
    MAG_Y,
    MAG_Z,
    ORIENT_X,
    ORIENT_Y,
    ORIENT_Z,
    PRESSURE,
    ALTITUDE,
    MOVING,
    TEMP_LEFT,
    TEMP_RIGHT,
    TEMP_IMU,
    TEMP_BAROMETER,
};
constexpr int kColumnCount = static_cast<int>(Column::TEMP_BAROMETER) + 1;

// The header title of a column, e.g. "accX[m/s^2]".
std::string_view titleOf(Column column);
// The column with that title; none for a title the recorder never writes.
std::optional<Column> columnTitled(std::string_view title);

}  // namespace recording
