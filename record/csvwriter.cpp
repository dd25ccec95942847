#include "csvwriter.h"

CsvWriter::~CsvWriter() { close(); }

bool CsvWriter::open(const QString& filePath, const RecOptions& groups) {
    std::lock_guard<std::mutex> lock(mutex);
    if (file.isOpen()) {
        file.close();
    }
    file.setFileName(filePath);
    // Unbuffered: each line goes to the system in one write. Through Qt's ring buffer a line
    // that straddles two of its chunks is flushed in two writes, and a process killed between
    // them leaves half a line.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered)) {
        return false;
    }
    options = groups;
    line = csvHeader(options).toStdString();
    return writeLine();
}

bool CsvWriter::writeRow(const CsvRow& row) {
    std::lock_guard<std::mutex> lock(mutex);
    if (!file.isOpen()) {
        return false;
    }
    line.clear();
    appendCsvRow(line, options, row);
    return writeLine();
}

// One write of the whole line: what a killed process leaves in the file ends with a complete
// line.
bool CsvWriter::writeLine() {
    const auto size = static_cast<qint64>(line.size());
    return file.write(line.data(), size) == size;
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

QString CsvWriter::fileName() const {
    std::lock_guard<std::mutex> lock(mutex);
    return file.fileName();
}

QString CsvWriter::errorString() const {
    std::lock_guard<std::mutex> lock(mutex);
    return file.errorString();
}
