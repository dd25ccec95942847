// A sensor recording as the viewer's recorder writes it: a header line of column titles, then one
// line per row, every value in fixed notation and followed by a comma.
//
// Opening reads the whole file once to check it and to note where every 1024th row starts; rows
// are then read on demand through one buffer. Memory does not grow with the file's length.
//
// A recording whose writer died (a crash, a SIGKILL, a power loss) may end in a partly written
// row, or in a blank line. Such a file opens with the rows before that line and says so through
// cutShort(); damage anywhere before the last line refuses the file, and so does a last row that
// is whole but wrong (its timestamp going back, say).
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "LineSource.h"
#include "RecordingColumns.h"

namespace recording {

// Why a file is not a recording, or what is wrong with its last line. Line 0 means the file as a
// whole.
struct Problem {
    std::int64_t line = 0;
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
    std::int64_t rowCount() const { return rowCount_; }
    double firstImuTime() const { return firstImuTime_; }
    double lastImuTime() const { return lastImuTime_; }
    // The damaged last line that opening left out, if there was one: its line number and what
    // is wrong with it. The rows before it are the file's rows.
    const std::optional<Problem>& cutShort() const { return cutShort_; }

    // Row `index` (0 = the first after the header). Reading the row after the last one read is
    // the cheap case; any other index goes through the row index. Columns the file lacks read 0.
    // False, with `row` untouched, when the row can no longer be read as it was when the file
    // was opened (the file was changed or cut meanwhile, or a read failed).
    bool read(std::int64_t index, Row& row);

private:
    static constexpr std::int64_t kRowsPerMark = 1024;

    RecordingFile() = default;
    bool openLines(Problem& problem);
    bool readHeader(Problem& problem);
    bool scanRows(Problem& problem);
    enum class RowCheck { SOUND, DAMAGED, WRONG };
    RowCheck checkRow(std::string_view line, std::int64_t lineNumber, Problem& problem);
    bool endsAtDamage(const Problem& damage);
    bool seekToRow(std::int64_t index);
    bool parseRow(std::string_view line, Row& row) const;

    std::string path_;
    LineSource lines_;
    std::vector<Column> columns_;  // in the file's order
    std::bitset<kColumnCount> present_;
    std::size_t imuTimeField_ = 0;
    std::int64_t rowCount_ = 0;
    double firstImuTime_ = 0.0, lastImuTime_ = 0.0;
    std::optional<Problem> cutShort_;
    std::vector<std::uint64_t> marks_;  // byte offset of rows 0, 1024, 2048, ...
    std::int64_t nextRow_ = -1;         // the row lines_ stands at; -1: unknown
};

}  // namespace recording
