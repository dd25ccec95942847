// A sensor recording as the viewer's recorder writes it: a header line of column titles, then one
// line per row, every value in fixed notation and followed by a comma.
//
// Opening reads the whole file once to check it and to note where every 1024th row starts; rows
// are then read on demand through one buffer. Memory does not grow with the file's length.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "LineSource.h"
#include "RecordingColumns.h"

namespace recording {

// Why a file is not a recording. Line 0 means the file as a whole.
struct Problem {
    int line = 0;
    std::string text;
};

struct Row {
    std::array<double, kColumnCount> values{};
    double operator[](Column column) const { return values[static_cast<std::size_t>(column)]; }
};

class RecordingFile {
public:
    // Null, with the problem filled in, when the file cannot be replayed.
    static std::unique_ptr<RecordingFile> open(const std::string& path, Problem& problem);

    const std::string& path() const { return path_; }
    bool has(Column column) const { return present_.test(static_cast<std::size_t>(column)); }
    int rowCount() const { return rowCount_; }
    double firstImuTime() const { return firstImuTime_; }
    double lastImuTime() const { return lastImuTime_; }

    // Row `index` (0 = the first after the header). Reading the row after the last one read is
    // the cheap case; any other index goes through the row index. Columns the file lacks read 0.
    bool read(int index, Row& row);

private:
    static constexpr int kRowsPerMark = 1024;

    RecordingFile() = default;
    bool readHeader(Problem& problem);
    bool scanRows(Problem& problem);
    bool checkRow(std::string_view line, int lineNumber, Problem& problem);
    void parseRow(std::string_view line, Row& row) const;

    std::string path_;
    LineSource lines_;
    std::vector<Column> columns_;  // in the file's order
    std::bitset<kColumnCount> present_;
    int imuTimeField_ = -1;
    int rowCount_ = 0;
    double firstImuTime_ = 0.0, lastImuTime_ = 0.0;
    std::uint64_t firstRowOffset_ = 0;
    std::vector<std::uint64_t> marks_;  // byte offset of rows 0, 1024, 2048, ...
    int nextRow_ = -1;                  // the row lines_ stands at; -1: unknown
};

}  // namespace recording
