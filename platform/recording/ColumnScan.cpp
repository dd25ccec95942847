#include "ColumnScan.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <thread>

#include "FileAccess.h"
#include "LineSource.h"
#include "RecordingHeader.h"

namespace recording {

namespace {

constexpr std::int64_t kNanoPerUnit = 1'000'000'000;
constexpr int kMaxThreads = 16;

// A value in billionths, as the recorder writes it: an optional minus, digits, optionally a
// point and up to 9 more digits, ended by a comma or the end of the line. Returns where it
// ended, or null for anything else (blanks, exponents, empty text, magnitudes beyond 9.2e9).
const char* parseNano(const char* p, const char* end, std::int64_t& value) {
    const bool negative = p != end && *p == '-';
    if (negative) ++p;
    std::int64_t whole = 0;
    int digits = 0;
    for (; p != end && *p >= '0' && *p <= '9'; ++p, ++digits) {
        if (whole > 9'000'000'000) return nullptr;
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
    if ((p != end && *p != ',') || digits == 0) return nullptr;
    for (; fractionDigits < 9; ++fractionDigits) fraction *= 10;
    value = whole * kNanoPerUnit + fraction;
    if (negative) value = -value;
    return p;
}

double toUnits(std::int64_t nano) { return static_cast<double>(nano) / kNanoPerUnit; }

// How one row is read: which field goes where.
struct RowLayout {
    static constexpr int kSkipped = -2, kImuTime = -1;  // else the slot of a column read
    std::size_t fieldCount = 0;
    std::size_t lastRead = 0;  // no field after it is parsed
    std::vector<int> slotOfField;
    std::vector<Column> slotColumns;
};

std::string notFixedPoint(std::size_t field, Column column, const char* p, const char* end) {
    const char* stop = std::find(p, end, ',');
    return "Value " + std::to_string(field + 1) + " (" + std::string(titleOf(column)) + ") \"" +
           std::string(p, stop) + "\" is not a fixed-point number.";
}

// Parses the fields of one line; the callback gets (slot, value) for every field read.
// Returns an empty text, or why the line is not a row.
template <class Take>
std::string parseLine(std::string_view line, const RowLayout& layout, Take&& take) {
    if (!line.empty() && line.back() == ',') line.remove_suffix(1);
    const char* p = line.data();
    const char* const end = p + line.size();
    const auto fields = static_cast<std::size_t>(std::count(p, end, ',')) + 1;
    if (fields != layout.fieldCount) {
        return "The row has " + std::to_string(fields) + " values where the header has " +
               std::to_string(layout.fieldCount) + " columns.";
    }
    for (std::size_t field = 0; field <= layout.lastRead; ++field) {
        const int slot = layout.slotOfField[field];
        if (slot == RowLayout::kSkipped) {
            while (*p != ',') ++p;  // a field read comes later: the comma is there
            ++p;
            continue;
        }
        std::int64_t value = 0;
        const char* stop = parseNano(p, end, value);
        if (stop == nullptr) {
            return notFixedPoint(
                field, slot >= 0 ? layout.slotColumns[std::size_t(slot)] : Column::IMU_TIME, p,
                end);
        }
        take(slot, value);
        p = stop == end ? end : stop + 1;
    }
    return {};
}

struct FirstRow {
    std::int64_t timeNs = 0;
    std::vector<std::int64_t> values;  // per slot
};

// What one chunk of the file holds: counted first, then parsed into its place.
struct Chunk {
    std::uint64_t begin = 0, end = 0;  // the rows that start in [begin, end) are the chunk's
    std::size_t rows = 0;
    std::size_t firstRow = 0;  // rows of the chunks before it
    std::string problem;       // with problemRow: the chunk's row at fault
    std::size_t problemRow = 0;
    bool failed = false;
};

// Reads the file in chunks on several threads, twice: the first pass counts each chunk's rows,
// so that the second can parse every row straight into its place in the columns. Nothing is
// stored twice, and the columns are allocated once at their final size.
class ChunkedScan {
public:
    ChunkedScan(const std::string& path, RowLayout layout, FirstRow first, std::uint64_t dataBegin,
                std::uint64_t fileSize, std::uint64_t chunkBytes)
        : path_(path), layout_(std::move(layout)), first_(std::move(first)) {
        const std::uint64_t bytes = fileSize - dataBegin;
        const std::uint64_t count =
            std::max<std::uint64_t>(1, bytes / std::max<std::uint64_t>(1, chunkBytes));
        chunks_.resize(count);
        for (std::uint64_t i = 0; i < count; ++i) {
            chunks_[i].begin = dataBegin + bytes * i / count;
            chunks_[i].end = dataBegin + bytes * (i + 1) / count;
        }
    }

    // Runs both passes on `threads` threads, the calling one included; progress is reported on
    // the calling thread. False when a chunk was left unread: cancelled, failed, or the file could
    // not be opened again.
    bool run(int threads, const std::function<bool(double)>& progress) {
        const bool counted =
            runPass(threads, progress, 0.0, kCountingShare, &ChunkedScan::countChunk);
        std::size_t rows = 0;
        for (Chunk& chunk : chunks_) {
            chunk.firstRow = rows;
            rows += chunk.rows;
        }
        if (!counted) return false;
        scan_.rowCount = rows;
        scan_.firstImuTimeNs = first_.timeNs;
        scan_.imuTimeNs.resize(rows);
        for (const Column column : layout_.slotColumns) {
            ScannedColumn scanned;
            scanned.column = column;
            scanned.offsets.resize(rows);
            scan_.columns.push_back(std::move(scanned));
        }
        for (std::size_t slot = 0; slot < layout_.slotColumns.size(); ++slot)
            scan_.columns[slot].origin = toUnits(first_.values[slot]);
        return runPass(threads, progress, kCountingShare, 1.0 - kCountingShare,
                       &ChunkedScan::parseChunk);
    }

    const Chunk* failedChunk() const {
        for (const Chunk& chunk : chunks_)
            if (chunk.failed) return &chunk;
        return nullptr;
    }

    ColumnScan take() { return std::move(scan_); }

private:
    static constexpr double kCountingShare = 0.15;  // of the time: counting is a quick pass

    using ChunkWork = void (ChunkedScan::*)(LineSource&, Chunk&);

    bool runPass(int threads, const std::function<bool(double)>& progress, double shareBefore,
                 double shareOfPass, ChunkWork work) {
        next_ = 0;
        done_ = 0;
        const auto worker = [&](bool reports) {
            LineSource lines;
            if (lines.open(path_) != LineSource::Opening::OPENED)
                return;  // the other threads read its share
            for (;;) {
                if (stop_.load()) return;
                const std::size_t index = next_.fetch_add(1);
                if (index >= chunks_.size()) return;
                (this->*work)(lines, chunks_[index]);
                const std::size_t done = done_.fetch_add(1) + 1;
                const double share =
                    static_cast<double>(done) / static_cast<double>(chunks_.size());
                if (reports && !progress(shareBefore + shareOfPass * share)) stop_.store(true);
            }
        };
        std::vector<std::thread> helpers;
        for (int i = 1; i < threads; ++i) helpers.emplace_back(worker, false);
        worker(true);
        for (std::thread& helper : helpers) helper.join();
        return done_.load() == chunks_.size() && failedChunk() == nullptr;
    }

    void fail(Chunk& chunk, std::size_t row, std::string problem) {
        chunk.failed = true;
        chunk.problemRow = row;
        chunk.problem = std::move(problem);
        stop_.store(true);
    }

    // Stands `lines` at the first row that starts in the chunk.
    bool seekChunk(LineSource& lines, Chunk& chunk) {
        std::string_view skipped;
        const bool first = &chunk == &chunks_.front();
        if (lines.seek(first ? chunk.begin : chunk.begin - 1) && (first || lines.next(skipped)))
            return true;
        if (lines.offset() < chunk.end) fail(chunk, 0, "The file could not be read to its end.");
        return false;
    }

    bool checkEnd(const LineSource& lines, Chunk& chunk, std::size_t row) {
        if (lines.tooLong())
            fail(chunk, row, "The line is longer than any row of a recording.");
        else if (lines.failed())
            fail(chunk, row, "The file could not be read to its end.");
        return !chunk.failed;
    }

    void countChunk(LineSource& lines, Chunk& chunk) {
        if (!seekChunk(lines, chunk)) return;
        std::string_view line;
        while (lines.offset() < chunk.end && lines.next(line)) ++chunk.rows;
        checkEnd(lines, chunk, chunk.rows);
    }

    void parseChunk(LineSource& lines, Chunk& chunk) {
        if (!seekChunk(lines, chunk)) return;
        std::string_view line;
        std::size_t row = 0;
        for (; row < chunk.rows && lines.next(line); ++row) {
            const std::size_t at = chunk.firstRow + row;
            const std::string problem = parseLine(line, layout_, [&](int slot, std::int64_t value) {
                if (slot < 0) {
                    scan_.imuTimeNs[at] = value - first_.timeNs;
                } else {
                    const auto s = static_cast<std::size_t>(slot);
                    scan_.columns[s].offsets[at] = static_cast<float>(
                        static_cast<double>(value - first_.values[s]) / kNanoPerUnit);
                }
            });
            if (!problem.empty()) return fail(chunk, row, problem);
            if ((row & 0xFFFF) == 0 && stop_.load()) return;
        }
        if (checkEnd(lines, chunk, row) && row != chunk.rows)
            fail(chunk, row, "The file changed while it was read.");
    }

    std::string path_;
    RowLayout layout_;
    FirstRow first_;
    std::vector<Chunk> chunks_;
    ColumnScan scan_;
    std::atomic<std::size_t> next_{0}, done_{0};
    std::atomic<bool> stop_{false};
};

RowLayout layoutFor(const RecordingHeader& header, const std::vector<Column>& wanted) {
    RowLayout layout;
    layout.fieldCount = header.columns.size();
    layout.slotOfField.assign(layout.fieldCount, RowLayout::kSkipped);
    layout.lastRead = std::size_t(header.fieldOf(Column::IMU_TIME));
    layout.slotOfField[layout.lastRead] = RowLayout::kImuTime;
    for (const Column column : wanted) {
        const int field = header.fieldOf(column);
        if (field < 0 || column == Column::IMU_TIME) continue;
        if (layout.slotOfField[std::size_t(field)] >= 0) continue;  // asked for twice
        layout.slotOfField[std::size_t(field)] = static_cast<int>(layout.slotColumns.size());
        layout.slotColumns.push_back(column);
        layout.lastRead = std::max(layout.lastRead, std::size_t(field));
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
    LineSource lines;
    if (std::string unreadable = problemOpening(lines.open(path)); !unreadable.empty()) {
        result.problem = {0, std::move(unreadable)};
        return result;
    }
    std::string_view line;
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

    struct stat info {};
    ::stat(path.c_str(), &info);
    ChunkedScan chunks(path, layout, first, dataBegin,
                       std::max<std::uint64_t>(dataBegin, std::uint64_t(info.st_size)),
                       options.chunkBytes);
    bool cancelled = false;
    const bool finished = chunks.run(threadCount(options.threads), [&](double share) {
        cancelled = options.progress && !options.progress(share);
        return !cancelled;
    });
    if (const Chunk* failed = chunks.failedChunk()) {
        // Line 1 is the header; rows count from line 2.
        const std::size_t lineNumber = failed->firstRow + failed->problemRow + 2;
        result.problem = {static_cast<int>(lineNumber), failed->problem};
        return result;
    }
    if (!finished) {
        result.cancelled = cancelled;
        result.problem = {
            0, cancelled ? "The reading was cancelled." : "The file could not be read to its end."};
        return result;
    }
    result.scan = chunks.take();
    return result;
}

}  // namespace recording
