#include "RecordingFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

#include "FileAccess.h"
#include "RecordingHeader.h"

namespace recording {

namespace {

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// Rows end every value with a comma; the last one is not the start of another value.
std::string_view withoutTrailingComma(std::string_view line) {
    if (!line.empty() && line.back() == ',') line.remove_suffix(1);
    return line;
}

enum class NumberShape { FIXED, EMPTY, SCIENTIFIC, NOT_A_NUMBER };

// Fixed notation as the recorder writes it: an optional minus, digits, optionally a point and
// more digits.
NumberShape shapeOf(std::string_view text) {
    if (text.empty()) return NumberShape::EMPTY;
    std::size_t i = text[0] == '-' ? 1 : 0;
    std::size_t digits = 0;
    bool point = false;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c >= '0' && c <= '9') {
            ++digits;
        } else if (c == '.' && !point) {
            point = true;
        } else if ((c == 'e' || c == 'E') && digits > 0) {
            return NumberShape::SCIENTIFIC;
        } else {
            return NumberShape::NOT_A_NUMBER;
        }
    }
    return digits > 0 ? NumberShape::FIXED : NumberShape::NOT_A_NUMBER;
}

double parsed(std::string_view text) {
    double value = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string problemWithValue(int field, std::string_view title, std::string_view text,
                             NumberShape shape) {
    const std::string which =
        "Value " + std::to_string(field + 1) + " (" + std::string(title) + ")";
    switch (shape) {
        case NumberShape::EMPTY:
            return which + " is empty.";
        case NumberShape::SCIENTIFIC:
            return which + " " + quoted(text) +
                   " is in scientific notation; recordings hold fixed-point numbers.";
        default:
            return which + " " + quoted(text) + " is not a number.";
    }
}

}  // namespace

std::unique_ptr<RecordingFile> RecordingFile::open(const std::string& path, Problem& problem) {
    std::unique_ptr<RecordingFile> file(new RecordingFile);
    file->path_ = path;
    std::string unreachable = problemReaching(path);
    if (unreachable.empty() && !file->lines_.open(path)) unreachable = cannotRead();
    if (!unreachable.empty()) {
        problem = {0, unreachable};
        return nullptr;
    }
    if (!file->readHeader(problem) || !file->scanRows(problem)) return nullptr;
    file->nextRow_ = -1;
    return file;
}

bool RecordingFile::readHeader(Problem& problem) {
    std::string_view line;
    if (!lines_.next(line)) {
        problem = {lines_.tooLong() ? 1 : 0, lines_.tooLong()
                                                 ? "The first line is too long for a header."
                                                 : "The file is empty."};
        return false;
    }
    RecordingHeader header;
    if (std::string refusal = parseHeader(line, header); !refusal.empty()) {
        problem = {1, std::move(refusal)};
        return false;
    }
    columns_ = header.columns;
    present_ = header.present;
    imuTimeField_ = header.fieldOf(Column::IMU_TIME);
    firstRowOffset_ = lines_.offset();
    return true;
}

bool RecordingFile::scanRows(Problem& problem) {
    std::string_view line;
    int lineNumber = 1;
    for (;;) {
        const std::uint64_t offset = lines_.offset();
        if (!lines_.next(line)) break;
        ++lineNumber;
        if (rowCount_ % kRowsPerMark == 0) marks_.push_back(offset);
        if (!checkRow(line, lineNumber, problem)) return false;
        ++rowCount_;
    }
    if (lines_.tooLong()) {
        problem = {lineNumber + 1, "The line is longer than any row of a recording."};
        return false;
    }
    if (lines_.failed()) {
        problem = {lineNumber + 1, "The file could not be read to its end."};
        return false;
    }
    if (rowCount_ == 0) {
        problem = {0, "The file has a header but no rows."};
        return false;
    }
    return true;
}

bool RecordingFile::checkRow(std::string_view line, int lineNumber, Problem& problem) {
    const std::string_view values = withoutTrailingComma(line);
    const int expected = static_cast<int>(columns_.size());
    int field = 0;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t comma = values.find(',', begin);
        const std::string_view text = values.substr(begin, comma - begin);
        if (field < expected) {
            const NumberShape shape = shapeOf(text);
            if (shape != NumberShape::FIXED) {
                problem = {
                    lineNumber,
                    problemWithValue(field, titleOf(columns_[static_cast<std::size_t>(field)]),
                                     text, shape)};
                return false;
            }
            if (field == imuTimeField_) {
                const double time = parsed(text);
                if (rowCount_ > 0 && time < lastImuTime_) {
                    problem = {lineNumber, "The IMU timestamp " + std::string(text) +
                                               " goes back from the line before."};
                    return false;
                }
                if (rowCount_ == 0) firstImuTime_ = time;
                lastImuTime_ = time;
            }
        }
        ++field;
        if (comma == std::string_view::npos) break;
        begin = comma + 1;
    }
    if (field != expected) {
        problem = {lineNumber, "The row has " + std::to_string(field) +
                                   " values where the header has " + std::to_string(expected) +
                                   " columns."};
        return false;
    }
    return true;
}

void RecordingFile::parseRow(std::string_view line, Row& row) const {
    row.values.fill(0.0);
    const std::string_view values = withoutTrailingComma(line);
    std::size_t begin = 0;
    for (const Column column : columns_) {
        const std::size_t comma = values.find(',', begin);
        row.values[static_cast<std::size_t>(column)] = parsed(values.substr(begin, comma - begin));
        if (comma == std::string_view::npos) break;
        begin = comma + 1;
    }
}

bool RecordingFile::read(int index, Row& row) {
    if (index < 0 || index >= rowCount_) return false;
    if (index != nextRow_) {
        const int mark = index / kRowsPerMark;
        if (!lines_.seek(marks_[static_cast<std::size_t>(mark)])) return false;
        std::string_view skipped;
        for (int i = mark * kRowsPerMark; i < index; ++i) {
            if (!lines_.next(skipped)) return false;
        }
    }
    std::string_view line;
    if (!lines_.next(line)) {
        nextRow_ = -1;
        return false;
    }
    parseRow(line, row);
    nextRow_ = index + 1;
    return true;
}

}  // namespace recording
