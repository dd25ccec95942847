// Reads chosen columns of a whole recording at once, for analyses that need every row: the file
// is cut into chunks that several threads parse side by side, each through its own fixed buffer,
// with a number parser made for the recorder's fixed notation (9 decimals). Values are kept as
// floats relative to the first row's value, so a column costs 4 bytes a row; IMU timestamps are
// kept exactly, in nanoseconds.
//
// The header is read by the same rules as the replay reader's. Rows are checked for their
// number of values and for fixed-point numbers in the columns read; the order of timestamps is
// left to the caller.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "RecordingColumns.h"
#include "RecordingFile.h"

namespace recording {

struct ScannedColumn {
    Column column = Column::INDEX;
    double origin = 0.0;         // the first row's value
    std::vector<float> offsets;  // every row's value minus origin
};

struct ColumnScan {
    std::size_t rowCount = 0;
    std::int64_t firstImuTimeNs = 0;
    std::vector<std::int64_t> imuTimeNs;  // every row's IMU timestamp minus the first one
    std::vector<ScannedColumn> columns;   // those asked for that the file has, in that order

    // Null when the file lacks the column or it was not asked for.
    const ScannedColumn* find(Column column) const;
};

struct ScanOptions {
    int threads = 0;                    // 0: one per processor core
    std::size_t chunkBytes = 8u << 20;  // the share of the file one thread takes at a time
    // Called on the calling thread now and then with the share of the file read so far (0 to 1);
    // returning false cancels the scan.
    std::function<bool(double)> progress;
};

struct ScanResult {
    std::optional<ColumnScan> scan;  // empty when refused or cancelled
    Problem problem;
    bool cancelled = false;
};

ScanResult scanColumns(const std::string& path, const std::vector<Column>& wanted,
                       const ScanOptions& options = {});

}  // namespace recording
