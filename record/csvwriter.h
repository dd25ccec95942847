#pragma once

#include <QFile>
#include <QString>
#include <cstdint>
#include <mutex>
#include <string>

#include "csvformat.h"
#include "recoptions.h"

// One CSV recording file: the header when it opens, then one row per writeRow().
//
// Every line is built in memory and handed to the system in one write, so a process that dies
// mid-recording leaves complete lines behind, except that a SIGKILL arriving during the write
// may cut the line being written at a page boundary (Linux ends such writes early). The column
// groups are fixed when the file opens.
//
// A write that fails (a full disk, a file size limit, a removed medium) or a file that was
// deleted meanwhile ends the writing: a line the system took only in part is cut off again, so
// the file ends on its last complete line, and later rows are refused until the file is closed.
//
// Rows are written from the sampling thread while the file is opened and closed from the GUI
// thread; the calls are serialised inside.
class CsvWriter {
public:
    enum class WriteOutcome {
        WRITTEN,
        NOT_WRITTEN,  // no file is open, or an earlier write failed
        FAILED,       // this row failed: errorString() tells why; the file ends on a whole line
    };

    CsvWriter() = default;
    ~CsvWriter();
    CsvWriter(const CsvWriter&) = delete;
    CsvWriter& operator=(const CsvWriter&) = delete;

    // Creates (or truncates) the file and writes the header of `options`' groups. False if the
    // file cannot be opened for writing or the header cannot be written; errorString() then tells
    // why.
    bool open(const QString& filePath, const RecOptions& options);

    // Appends one line.
    WriteOutcome writeRow(const CsvRow& row);

    // Closes the file if one is open; harmless otherwise.
    void close();

    bool isOpen() const;
    // A write to the open file failed.
    bool hasFailed() const;
    QString fileName() const;
    QString errorString() const;

private:
    bool writeLine();
    void fail(const QString& reason);
    bool wasDeleted() const;

    mutable std::mutex mutex;
    QFile file;
    RecOptions options;
    std::string line;                // reused for every row
    std::int64_t completeBytes = 0;  // where the last complete line ends
    bool failed = false;
    QString failure;
};
