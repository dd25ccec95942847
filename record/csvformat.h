#pragma once

#include <QDateTime>
#include <QString>
#include <cstdint>
#include <string>

#include "recoptions.h"

// The values of one recorded row. The main window fills it from row i of its sample series,
// except tempImu and tempBarometer, which come from the camera's current sensor record at the
// moment the row is written.
struct CsvRow {
    std::int64_t index = 0;                               // row number in the sample series
    double imuTime = 0.0, magTime = 0.0, baroTime = 0.0;  // seconds
    double accX = 0.0, accY = 0.0, accZ = 0.0;
    double gyroX = 0.0, gyroY = 0.0, gyroZ = 0.0;
    double magX = 0.0, magY = 0.0, magZ = 0.0;  // uncalibrated field
    double orientX = 0.0, orientY = 0.0, orientZ = 0.0;
    double pressure = 0.0, altitude = 0.0;
    double movingState = 0.0;
    double tempLeft = 0.0, tempRight = 0.0, tempImu = 0.0, tempBarometer = 0.0;
};

// "yyyyMMdd_HHmmss-<model>-sn_<serial>-ORYXSensorsData.csv" with every blank removed.
QString recordingFileName(const QDateTime& localTime, const QString& modelText, unsigned serial);

// The folder with a trailing "/".
QString recordingFolder(const QString& saveFolder);

// The column titles of the groups chosen in `options`, each group ending with a comma, then
// "\n".
QString csvHeader(const RecOptions& options);

// Appends the row's line, "\n" included: the index, then the chosen groups' values in the
// header's order, each in fixed notation with 9 decimals and followed by a comma.
void appendCsvRow(std::string& line, const RecOptions& options, const CsvRow& row);
