#include "RecordingFile.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

#include "CsvFields.h"
#include "Excerpt.h"
#include "FileAccess.h"
#include "RecordingHeader.h"

namespace recording {

namespace {

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

// The number in `text`; false when from_chars cannot read all of it (out of range included).
bool readNumber(std::string_view text, double& value) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end;
}

// A fixed-point text this short is within a double's range: below 1e300 and, when not zero,
// above 1e-300. Only longer ones need reading to know.
constexpr std::size_t kLongestSurelyInRange = 300;

// Why `text` is not a value as the recorder writes it, phrased to follow the value's name; empty
// when it is one.
std::string whyNotAValue(std::string_view text) {
    switch (shapeOf(text)) {
        case NumberShape::EMPTY:
            return "is empty.";
        case NumberShape::SCIENTIFIC:
            return quotedExcerptOf(text) +
                   " is in scientific notation; recordings hold fixed-point numbers.";
        case NumberShape::NOT_A_NUMBER:
            return quotedExcerptOf(text) + " is not a number.";
        case NumberShape::FIXED:
            break;
    }
    double value = 0.0;
    if (text.size() > kLongestSurelyInRange && !readNumber(text, value))
        return quotedExcerptOf(text) + " is out of the range of a double-precision number.";
    return {};
}

std::string problemWithValue(std::size_t field, std::string_view title, const std::string& why) {
    return "Value " + std::to_string(field + 1) + " (" + std::string(title) + ") " + why;
}

}  // namespace

std::unique_ptr<RecordingFile> RecordingFile::open(const std::string& path, Problem& problem) {
    std::unique_ptr<RecordingFile> file(new RecordingFile);
    file->path_ = path;
    if (!file->openLines(problem) || !file->readHeader(problem) || !file->scanRows(problem))
        return nullptr;
    file->nextRow_ = -1;
    return file;
}

bool RecordingFile::openLines(Problem& problem) {
    const std::string unreadable = problemOpening(lines_.open(path_));
    if (unreadable.empty()) return true;
    problem = {0, unreadable};
    return false;
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
    // The parser refuses a header without the IMU time.
    imuTimeField_ = static_cast<std::size_t>(header.fieldOf(Column::IMU_TIME));
    return true;
}

bool RecordingFile::scanRows(Problem& problem) {
    std::string_view line;
    std::int64_t lineNumber = 1;
    for (;;) {
        const std::uint64_t offset = lines_.offset();
        if (!lines_.next(line)) break;
        ++lineNumber;
        switch (checkRow(line, lineNumber, problem)) {
            case RowCheck::SOUND:
                break;
            case RowCheck::DAMAGED:
                return endsAtDamage(problem);
            case RowCheck::WRONG:
                return false;
        }
        if (rowCount_ % kRowsPerMark == 0) marks_.push_back(offset);
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

// A damaged line that ends the file is where its writer stopped: the rows before it replay.
// Anything after it means the file is damaged inside, and it is refused with `damage`.
bool RecordingFile::endsAtDamage(const Problem& damage) {
    std::string_view after;
    const bool isLastLine = !lines_.next(after) && !lines_.tooLong() && !lines_.failed();
    if (!isLastLine || rowCount_ == 0) return false;
    cutShort_ = damage;
    return true;
}

// Checks one row and, when it is sound, takes in its IMU time. A damaged row is one such as a
// writer that stopped mid-row, or a disk that lost the end of the file, leaves behind: blank,
// with values missing or garbled, or broken off. Anything else wrong is the file's content.
RecordingFile::RowCheck RecordingFile::checkRow(std::string_view line, std::int64_t lineNumber,
                                                Problem& problem) {
    if (trimmed(line).empty()) {
        problem = {lineNumber, "The line is blank."};
        return RowCheck::DAMAGED;
    }
    const std::string_view values = withoutTrailingComma(line);
    const std::size_t expected = columns_.size();
    std::size_t field = 0;
    std::size_t begin = 0;
    double imuTime = 0.0;
    std::string_view imuText;
    for (;;) {
        const std::size_t comma = values.find(',', begin);
        const std::string_view text = values.substr(begin, comma - begin);
        if (field < expected) {
            const std::string why = whyNotAValue(text);
            if (!why.empty()) {
                problem = {lineNumber, problemWithValue(field, titleOf(columns_[field]), why)};
                const NumberShape shape = shapeOf(text);
                return shape == NumberShape::EMPTY || shape == NumberShape::NOT_A_NUMBER
                           ? RowCheck::DAMAGED
                           : RowCheck::WRONG;
            }
            if (field == imuTimeField_) {
                readNumber(text, imuTime);  // a value that passed whyNotAValue() reads
                imuText = text;
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
        return field < expected ? RowCheck::DAMAGED : RowCheck::WRONG;
    }
    if (rowCount_ > 0 && imuTime < lastImuTime_) {
        problem = {lineNumber,
                   "The IMU timestamp " + excerptOf(imuText) + " goes back from the line before."};
        return RowCheck::WRONG;
    }
    // The recorder ends every value with a comma and the row with a line end; a line that has
    // neither stopped where its writer did, possibly inside its last value.
    if (!lines_.lineEnded() && !endsWithComma(line)) {
        problem = {lineNumber,
                   "The line breaks off without a line end; its last value may be cut."};
        return RowCheck::DAMAGED;
    }
    if (rowCount_ == 0) firstImuTime_ = imuTime;
    lastImuTime_ = imuTime;
    return RowCheck::SOUND;
}

bool RecordingFile::parseRow(std::string_view line, Row& row) const {
    const std::string_view values = withoutTrailingComma(line);
    std::size_t begin = 0;
    std::size_t field = 0;
    for (;;) {
        const std::size_t comma = values.find(',', begin);
        if (field == columns_.size()) return false;
        double value = 0.0;
        if (!readNumber(values.substr(begin, comma - begin), value)) return false;
        row.values[static_cast<std::size_t>(columns_[field])] = value;
        ++field;
        if (comma == std::string_view::npos) break;
        begin = comma + 1;
    }
    return field == columns_.size();
}

bool RecordingFile::seekToRow(std::int64_t index) {
    const std::int64_t mark = index / kRowsPerMark;
    if (!lines_.seek(marks_[static_cast<std::size_t>(mark)])) return false;
    std::string_view skipped;
    for (std::int64_t i = mark * kRowsPerMark; i < index; ++i) {
        if (!lines_.next(skipped)) return false;
    }
    return true;
}

bool RecordingFile::read(std::int64_t index, Row& row) {
    if (index < 0 || index >= rowCount_) return false;
    const bool inOrder = index == nextRow_;
    // Where the lines stand is known again only once a row was read whole.
    nextRow_ = -1;
    if (!inOrder && !seekToRow(index)) return false;
    std::string_view line;
    Row parsed;
    if (!lines_.next(line) || !parseRow(line, parsed)) return false;
    row = parsed;
    nextRow_ = index + 1;
    return true;
}

}  // namespace recording
