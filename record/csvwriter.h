#pragma once

#include <QFile>
#include <QString>
#include <mutex>
#include <string>

#include "csvformat.h"
#include "recoptions.h"

// One CSV recording file: the header when it opens, then one row per writeRow().
//
// Every line is built in memory and handed to the system in one write, so a process that dies
// mid-recording leaves complete lines behind, except that a SIGKILL arriving during the write
// may cut the line being written at a page boundary (Linux ends such writes early). The column groups are fixed
// when the file opens.
//
// Rows are written from the sampling thread while the file is opened and closed from the GUI
// thread; the calls are serialised inside.
class CsvWriter {
public:
    CsvWriter() = default;
    ~CsvWriter();
    CsvWriter(const CsvWriter&) = delete;
    CsvWriter& operator=(const CsvWriter&) = delete;

    // Creates (or truncates) the file and writes the header of `options`' groups. False if the
    // file cannot be opened for writing; errorString() then tells why.
    bool open(const QString& filePath, const RecOptions& options);

    // Appends one line. False, writing nothing, when no file is open or the write failed.
    bool writeRow(const CsvRow& row);

    // Closes the file if one is open; harmless otherwise.
    void close();

    bool isOpen() const;
    QString fileName() const;
    QString errorString() const;

private:
    bool writeLine();

    mutable std::mutex mutex;
    QFile file;
    RecOptions options;
    std::string line;  // reused for every row
};

