#include "LineSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace recording {

LineSource::~LineSource() { close(); }

void LineSource::close() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
}

namespace {

// What a path that is not a regular file is.
LineSource::Opening kindOf(mode_t mode) {
    if (S_ISDIR(mode)) return LineSource::Opening::FOLDER;
    if (S_ISFIFO(mode)) return LineSource::Opening::NAMED_PIPE;
    if (S_ISSOCK(mode)) return LineSource::Opening::SOCKET;
    return LineSource::Opening::DEVICE;
}

}  // namespace

LineSource::Opening LineSource::open(const std::string& path) {
    close();
    // Without O_NONBLOCK, opening a named pipe waits for a writer, possibly forever. The flag
    // changes nothing for the regular files that are read.
    fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat info {};
    if (fd_ < 0) {
        // Sockets, and folders or devices without read permission, cannot be opened; say what
        // they are rather than why opening failed.
        const int reason = errno;
        if (::stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) return kindOf(info.st_mode);
        errno = reason;
        return reason == ENOENT ? Opening::NOT_FOUND : Opening::FAILED;
    }
    // The descriptor rather than the path is asked, so that a file swapped in between cannot
    // slip by.
    if (::fstat(fd_, &info) != 0) {
        const int reason = errno;
        close();
        errno = reason;
        return Opening::FAILED;
    }
    if (!S_ISREG(info.st_mode)) {
        close();
        return kindOf(info.st_mode);
    }
    buffer_.resize(kBufferBytes);
    return Opening::OPENED;
}

bool LineSource::seek(std::uint64_t offset) {
    if (fd_ < 0) return false;
    // Already in the buffer: no system call.
    if (offset >= bufferOffset_ && offset <= bufferOffset_ + end_) {
        begin_ = static_cast<std::size_t>(offset - bufferOffset_);
        return true;
    }
    if (::lseek(fd_, static_cast<off_t>(offset), SEEK_SET) < 0) {
        failed_ = true;
        return false;
    }
    bufferOffset_ = offset;
    begin_ = end_ = 0;
    atEnd_ = tooLong_ = failed_ = false;
    return true;
}

// Moves the unread bytes to the front and reads behind them.
bool LineSource::refill() {
    if (atEnd_ || failed_) return false;
    const std::size_t kept = end_ - begin_;
    if (kept == buffer_.size()) {
        tooLong_ = true;
        return false;
    }
    std::memmove(buffer_.data(), buffer_.data() + begin_, kept);
    bufferOffset_ += begin_;
    begin_ = 0;
    end_ = kept;
    for (;;) {
        const ssize_t n = ::read(fd_, buffer_.data() + end_, buffer_.size() - end_);
        if (n > 0) {
            end_ += static_cast<std::size_t>(n);
            return true;
        }
        if (n == 0) {
            atEnd_ = true;
            return false;
        }
        if (errno != EINTR) {
            failed_ = true;
            return false;
        }
    }
}

bool LineSource::next(std::string_view& line) {
    std::size_t searched = begin_;
    for (;;) {
        const void* found = std::memchr(buffer_.data() + searched, '\n', end_ - searched);
        if (found != nullptr) {
            const std::size_t stop =
                static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
            std::size_t length = stop - begin_;
            if (length > 0 && buffer_[stop - 1] == '\r') --length;
            line = std::string_view(buffer_.data() + begin_, length);
            begin_ = stop + 1;
            lineEnded_ = true;
            return true;
        }
        const std::size_t scanned = end_ - begin_;
        if (!refill()) break;
        searched = begin_ + scanned;
    }
    if (tooLong_ || failed_ || begin_ == end_) return false;
    // The last line has no line end, or only the start of a "\r\n" one.
    std::size_t length = end_ - begin_;
    if (buffer_[end_ - 1] == '\r') --length;
    line = std::string_view(buffer_.data() + begin_, length);
    begin_ = end_;
    lineEnded_ = false;
    return true;
}

}  // namespace recording
