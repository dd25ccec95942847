#include "ColumnScan.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <thread>

#include "LineSource.h"
#include "RecordingHeader.h"

namespace recording {

namespace {

constexpr std::int64_t kNanoPerUnit = 1'000'000'000;
constexpr int kMaxThreads = 16;

// A value in billionths, as the recorder writes it: an optional minus, digits, optionally a
// point and up to 9 more digits. False for anything else (blanks, exponents, empty text) and for
// magnitudes beyond 9.2e9.
bool parseNano(const char* p, const char* end, std::int64_t& value) {
    const bool negative = p != end && *p == '-';
    if (negative) ++p;
    std::int64_t whole = 0;
    int digits = 0;
    for (; p != end && *p >= '0' && *p <= '9'; ++p, ++digits) {
        if (whole > 9'000'000'000) return false;
        whole = whole * 10 + (*p - '0');
    }
    std::int64_t fraction = 0;
    int fractionDigits = 0;
    if (p != end && *p == '.') {
        for (++p; p != end && *p >= '0' && *p <= '9'; ++p, ++digits) {
            if (fractionDigits == 9) continue;  // beyond a billionth: dropped
            fraction = fraction * 10 + (*p - '0');
            ++fractionDigits;
        }
    }
    if (p != end || digits == 0) return false;
    for (; fractionDigits < 9; ++fractionDigits) fraction *= 10;
    value = whole * kNanoPerUnit + fraction;
    if (negative) value = -value;
    return true;
}

double toUnits(std::int64_t nano) { return static_cast<double>(nano) / kNanoPerUnit; }

std::string problemReaching(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return errno == ENOENT
                   ? "The file does not exist."
                   : std::string("The file cannot be read: ") + std::strerror(errno) + ".";
    }
    if (S_ISDIR(info.st_mode)) return "This is a folder.";
    return {};
}

// How one row is read: which field goes where.
struct RowLayout {
    std::size_t fieldCount = 0;
    int timeField = -1;
    std::vector<int> slotOfField;  // -1: not read
    std::vector<Column> slotColumns;
};

// Parses the fields of one line; the callback gets (slot, value) for every field read.
// Returns an empty text, or why the line is not a row.
template <class Take>
std::string parseLine(std::string_view line, const RowLayout& layout, Take&& take) {
    if (!line.empty() && line.back() == ',') line.remove_suffix(1);
    const char* p = line.data();
    const char* const end = p + line.size();
    std::size_t field = 0;
    for (;;) {
        const char* comma = static_cast<const char*>(std::memchr(p, ',', std::size_t(end - p)));
        const char* stop = comma != nullptr ? comma : end;
        if (field < layout.fieldCount && layout.slotOfField[field] != -2) {
            std::int64_t value = 0;
            if (!parseNano(p, stop, value)) {
                const Column column =
                    layout.slotOfField[field] >= 0
                        ? layout.slotColumns[std::size_t(layout.slotOfField[field])]
                        : Column::IMU_TIME;
                return "Value " + std::to_string(field + 1) + " (" + std::string(titleOf(column)) +
                       ") \"" + std::string(p, stop) + "\" is not a fixed-point number.";
            }
            take(layout.slotOfField[field], value);
        }
        ++field;
        if (comma == nullptr) break;
        p = comma + 1;
    }
    if (field != layout.fieldCount) {
        return "The row has " + std::to_string(field) + " values where the header has " +
               std::to_string(layout.fieldCount) + " columns.";
    }
    return {};
}

struct FirstRow {
    std::int64_t timeNs = 0;
    std::vector<std::int64_t> values;  // per slot
};

// What one chunk of the file yielded.
struct ChunkRows {
    std::vector<std::int64_t> timeNs;
    std::vector<std::vector<float>> offsets;  // per slot
    std::size_t rows = 0;
    std::string problem;  // with problemRow: the chunk's row at fault
    std::size_t problemRow = 0;
    bool failed = false;
};

class ChunkedScan {
public:
    ChunkedScan(const std::string& path, RowLayout layout, FirstRow first, std::uint64_t dataBegin,
                std::uint64_t fileSize, std::uint64_t chunkBytes)
        : path_(path), layout_(std::move(layout)), first_(std::move(first)) {
        const std::uint64_t bytes = fileSize - dataBegin;
        const std::uint64_t count =
            std::max<std::uint64_t>(1, bytes / std::max<std::uint64_t>(1, chunkBytes));
        for (std::uint64_t i = 0; i <= count; ++i) bounds_.push_back(dataBegin + bytes * i / count);
        chunks_.resize(count);
        bytesPerRowGuess_ = 1;
    }

    void setRowLengthGuess(std::size_t bytes) {
        bytesPerRowGuess_ = std::max<std::size_t>(1, bytes);
    }

    // Runs the chunks on `threads` threads, the calling one included. False when a chunk was left
    // unread: cancelled, failed, or the file could not be opened again.
    bool run(int threads, const std::function<bool(double)>& progress) {
        std::vector<std::thread> helpers;
        for (int i = 1; i < threads; ++i) helpers.emplace_back([this] { work(nullptr); });
        work(&progress);
        for (std::thread& helper : helpers) helper.join();
        return done_.load() == chunks_.size();
    }

    const ChunkRows* failedChunk() const {
        for (const ChunkRows& chunk : chunks_)
            if (chunk.failed) return &chunk;
        return nullptr;
    }

    std::size_t rowsBefore(const ChunkRows* chunk) const {
        std::size_t rows = 0;
        for (const ChunkRows& c : chunks_) {
            if (&c == chunk) break;
            rows += c.rows;
        }
        return rows;
    }

    ColumnScan collect() {
        ColumnScan scan;
        scan.rowCount = rowsBefore(nullptr);
        scan.firstImuTimeNs = first_.timeNs;
        scan.imuTimeNs.reserve(scan.rowCount);
        for (ChunkRows& chunk : chunks_) {
            scan.imuTimeNs.insert(scan.imuTimeNs.end(), chunk.timeNs.begin(), chunk.timeNs.end());
            std::vector<std::int64_t>().swap(chunk.timeNs);
        }
        for (std::size_t slot = 0; slot < layout_.slotColumns.size(); ++slot) {
            ScannedColumn column;
            column.column = layout_.slotColumns[slot];
            column.origin = toUnits(first_.values[slot]);
            column.offsets.reserve(scan.rowCount);
            for (ChunkRows& chunk : chunks_) {
                std::vector<float>& part = chunk.offsets[slot];
                column.offsets.insert(column.offsets.end(), part.begin(), part.end());
                std::vector<float>().swap(part);
            }
            scan.columns.push_back(std::move(column));
        }
        return scan;
    }

private:
    void work(const std::function<bool(double)>* progress) {
        LineSource lines;
        if (!lines.open(path_)) return;  // the other threads read its share
        for (;;) {
            if (stop_.load()) return;
            const std::size_t index = next_.fetch_add(1);
            if (index >= chunks_.size()) return;
            readChunk(lines, index);
            const std::size_t done = done_.fetch_add(1) + 1;
            if (progress != nullptr &&
                !(*progress)(static_cast<double>(done) / static_cast<double>(chunks_.size())))
                stop_.store(true);
        }
    }

    void fail(ChunkRows& chunk, std::size_t row, std::string problem) {
        chunk.failed = true;
        chunk.problemRow = row;
        chunk.problem = std::move(problem);
        stop_.store(true);
    }

    void readChunk(LineSource& lines, std::size_t index) {
        ChunkRows& chunk = chunks_[index];
        const std::uint64_t begin = bounds_[index], end = bounds_[index + 1];
        std::string_view line;
        // A chunk owns the rows that start inside it: skip the end of the one before.
        if (!lines.seek(index == 0 ? begin : begin - 1) || (index > 0 && !lines.next(line))) {
            if (lines.offset() < end) fail(chunk, 0, "The file could not be read to its end.");
            return;
        }
        const std::size_t expected = std::size_t(end - begin) / bytesPerRowGuess_ + 16;
        chunk.timeNs.reserve(expected);
        chunk.offsets.resize(layout_.slotColumns.size());
        for (std::vector<float>& column : chunk.offsets) column.reserve(expected);
        while (lines.offset() < end) {
            if (!lines.next(line)) break;
            const std::string problem = parseLine(line, layout_, [&](int slot, std::int64_t value) {
                if (slot < 0) {
                    chunk.timeNs.push_back(value - first_.timeNs);
                } else {
                    const auto s = static_cast<std::size_t>(slot);
                    chunk.offsets[s].push_back(static_cast<float>(
                        static_cast<double>(value - first_.values[s]) / kNanoPerUnit));
                }
            });
            if (!problem.empty()) return fail(chunk, chunk.rows, problem);
            ++chunk.rows;
            if ((chunk.rows & 0xFFFF) == 0 && stop_.load()) return;
        }
        if (lines.tooLong())
            return fail(chunk, chunk.rows, "The line is longer than any row of a recording.");
        if (lines.failed())
            return fail(chunk, chunk.rows, "The file could not be read to its end.");
    }

    std::string path_;
    RowLayout layout_;
    FirstRow first_;
    std::vector<std::uint64_t> bounds_;
    std::vector<ChunkRows> chunks_;
    std::size_t bytesPerRowGuess_;
    std::atomic<std::size_t> next_{0}, done_{0};
    std::atomic<bool> stop_{false};
};

RowLayout layoutFor(const RecordingHeader& header, const std::vector<Column>& wanted) {
    RowLayout layout;
    layout.fieldCount = header.columns.size();
    layout.slotOfField.assign(layout.fieldCount, -2);  // -2: skipped, -1: the IMU time
    layout.timeField = header.fieldOf(Column::IMU_TIME);
    layout.slotOfField[std::size_t(layout.timeField)] = -1;
    for (const Column column : wanted) {
        const int field = header.fieldOf(column);
        if (field < 0 || column == Column::IMU_TIME) continue;
        if (layout.slotOfField[std::size_t(field)] >= 0) continue;  // asked for twice
        layout.slotOfField[std::size_t(field)] = static_cast<int>(layout.slotColumns.size());
        layout.slotColumns.push_back(column);
    }
    return layout;
}

int threadCount(int asked) {
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(asked > 0 ? asked : cores, 1, kMaxThreads);
}

}  // namespace

const ScannedColumn* ColumnScan::find(Column column) const {
    for (const ScannedColumn& scanned : columns)
        if (scanned.column == column) return &scanned;
    return nullptr;
}

ScanResult scanColumns(const std::string& path, const std::vector<Column>& wanted,
                       const ScanOptions& options) {
    ScanResult result;
    if (std::string unreachable = problemReaching(path); !unreachable.empty()) {
        result.problem = {0, unreachable};
        return result;
    }
    LineSource lines;
    std::string_view line;
    if (!lines.open(path)) {
        result.problem = {0, std::string("The file cannot be read: ") + std::strerror(errno) + "."};
        return result;
    }
    if (!lines.next(line)) {
        result.problem = {lines.tooLong() ? 1 : 0, lines.tooLong()
                                                       ? "The first line is too long for a header."
                                                       : "The file is empty."};
        return result;
    }
    RecordingHeader header;
    if (std::string refusal = parseHeader(line, header); !refusal.empty()) {
        result.problem = {1, refusal};
        return result;
    }
    const RowLayout layout = layoutFor(header, wanted);
    const std::uint64_t dataBegin = lines.offset();

    // The first row gives every column its origin.
    FirstRow first;
    first.values.assign(layout.slotColumns.size(), 0);
    if (!lines.next(line)) {
        result.problem = {0, "The file has a header but no rows."};
        return result;
    }
    if (std::string problem = parseLine(line, layout,
                                        [&](int slot, std::int64_t value) {
                                            if (slot < 0)
                                                first.timeNs = value;
                                            else
                                                first.values[std::size_t(slot)] = value;
                                        });
        !problem.empty()) {
        result.problem = {2, problem};
        return result;
    }
    const std::size_t rowLength = std::size_t(lines.offset() - dataBegin);

    struct stat info {};
    ::stat(path.c_str(), &info);
    ChunkedScan chunks(path, layout, first, dataBegin,
                       std::max<std::uint64_t>(dataBegin, std::uint64_t(info.st_size)),
                       options.chunkBytes);
    chunks.setRowLengthGuess(rowLength);
    bool cancelled = false;
    const bool finished = chunks.run(threadCount(options.threads), [&](double share) {
        cancelled = options.progress && !options.progress(share);
        return !cancelled;
    });
    if (const ChunkRows* failed = chunks.failedChunk()) {
        // Line 1 is the header; rows count from line 2.
        const std::size_t lineNumber = chunks.rowsBefore(failed) + failed->problemRow + 2;
        result.problem = {static_cast<int>(lineNumber), failed->problem};
        return result;
    }
    if (!finished) {
        result.cancelled = cancelled;
        result.problem = {
            0, cancelled ? "The reading was cancelled." : "The file could not be read to its end."};
        return result;
    }
    result.scan = chunks.collect();
    return result;
}

}  // namespace recording
