#include "csvwriter.h"

#include <sys/stat.h>

#include <cerrno>

CsvWriter::~CsvWriter() { close(); }

bool CsvWriter::open(const QString& filePath, const RecOptions& groups) {
    std::lock_guard<std::mutex> lock(mutex);
    if (file.isOpen()) {
        file.close();
    }
    failed = false;
    failure.clear();
    completeBytes = 0;
    file.setFileName(filePath);
    // Unbuffered: each line goes to the system in one write. Through Qt's ring buffer a line
    // that straddles two of its chunks is flushed in two writes, and a process killed between
    // them leaves half a line.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered)) {
        return false;
    }
    options = groups;
    line = csvHeader(options).toStdString();
    if (writeLine()) {
        return true;
    }
    fail(file.errorString());
    file.close();
    return false;
}

CsvWriter::WriteOutcome CsvWriter::writeRow(const CsvRow& row) {
    std::lock_guard<std::mutex> lock(mutex);
    if (!file.isOpen() || failed) {
        return WriteOutcome::NOT_WRITTEN;
    }
    line.clear();
    appendCsvRow(line, options, row);
    if (!writeLine()) {
        fail(file.errorString());
        return WriteOutcome::FAILED;
    }
    // Writes into a deleted file succeed, but nobody will ever read them.
    if (wasDeleted()) {
        fail(qt_error_string(ENOENT));
        return WriteOutcome::FAILED;
    }
    return WriteOutcome::WRITTEN;
}

// One write of the whole line: what a killed process leaves in the file ends with a complete
// line. A system that takes only part of the line (a full disk, a size limit) is asked for the
// rest, which fails and tells why.
bool CsvWriter::writeLine() {
    const auto size = static_cast<qint64>(line.size());
    qint64 written = 0;
    while (written < size) {
        const qint64 n = file.write(line.data() + written, size - written);
        if (n <= 0) {
            return false;
        }
        written += n;
    }
    completeBytes += size;
    return true;
}

// The part of a line that reached the file goes again: the file ends on its last whole line.
void CsvWriter::fail(const QString& reason) {
    failed = true;
    failure = reason;
    file.resize(completeBytes);
}

bool CsvWriter::wasDeleted() const {
    struct stat status {};
    return fstat(file.handle(), &status) == 0 && status.st_nlink == 0;
}

void CsvWriter::close() {
    std::lock_guard<std::mutex> lock(mutex);
    if (file.isOpen()) {
        file.close();
    }
}

bool CsvWriter::isOpen() const {
    std::lock_guard<std::mutex> lock(mutex);
    return file.isOpen();
}

bool CsvWriter::hasFailed() const {
    std::lock_guard<std::mutex> lock(mutex);
    return failed;
}

QString CsvWriter::fileName() const {
    std::lock_guard<std::mutex> lock(mutex);
    return file.fileName();
}

QString CsvWriter::errorString() const {
    std::lock_guard<std::mutex> lock(mutex);
    return failed ? failure : file.errorString();
}
