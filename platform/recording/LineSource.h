// Lines of a file, read through one fixed buffer: memory stays the same whatever the file's
// length, and a line can be started again from its byte offset.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace recording {

class LineSource {
public:
    // The longest line accepted; a longer one ends the reading with tooLong().
    static constexpr std::size_t kBufferBytes = 1 << 20;

    LineSource() = default;
    ~LineSource();
    LineSource(const LineSource&) = delete;
    LineSource& operator=(const LineSource&) = delete;

    // What open() found at the path. Only regular files are read: a named pipe would block
    // the reader until some writer appears, and a device may never end.
    enum class Opening { OPENED, NOT_FOUND, FAILED, FOLDER, NAMED_PIPE, DEVICE, SOCKET };
    // FAILED leaves the reason in errno.
    Opening open(const std::string& path);
    bool isOpen() const { return fd_ >= 0; }
    // The next line without its line end ("\n" or "\r\n"); false at the end of the file, on a
    // read error or on a line longer than the buffer. The view lives until the next call.
    bool next(std::string_view& line);
    // Whether the line next() gave last had a line end: only the last line of a file can lack
    // one.
    bool lineEnded() const { return lineEnded_; }
    // Byte offset in the file of the line that next() returns next.
    std::uint64_t offset() const { return bufferOffset_ + begin_; }
    // Continues reading at a line start found earlier with offset().
    bool seek(std::uint64_t offset);
    bool tooLong() const { return tooLong_; }
    bool failed() const { return failed_; }

private:
    bool refill();
    void close();

    int fd_ = -1;
    std::vector<char> buffer_;
    std::size_t begin_ = 0, end_ = 0;  // unread bytes of the buffer
    std::uint64_t bufferOffset_ = 0;   // file offset of buffer_[0]
    bool atEnd_ = false;
    bool tooLong_ = false;
    bool failed_ = false;
    bool lineEnded_ = false;
};

}  // namespace recording
