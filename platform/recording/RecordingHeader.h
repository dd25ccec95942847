// The header line of a sensor recording: the column titles in the file's order. Shared by the
// replay reader and the column scan, so that both accept exactly the same files.
#pragma once

#include <bitset>
#include <string>
#include <string_view>
#include <vector>

#include "RecordingColumns.h"

namespace recording {

struct RecordingHeader {
    std::vector<Column> columns;  // in the file's order
    std::bitset<kColumnCount> present;

    bool has(Column column) const { return present.test(static_cast<std::size_t>(column)); }
    // The position of the column in a row; -1 when the file lacks it.
    int fieldOf(Column column) const;
};

// Reads the titles of a header line (without its line end). Returns why the line is not a
// recording header, or an empty text when it is one.
std::string parseHeader(std::string_view line, RecordingHeader& header);

}  // namespace recording
