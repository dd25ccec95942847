// The sensor sample state shared between the sampling thread and the window: the series (one
// row per new IMU sample, plus event series), and the running ranges and rates that the GUI
// reads without the lock.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "SampleColumn.h"

// The values of one IMU-rate row.
struct ImuRow {
    double accX, accY, accZ;
    double gyroX, gyroY, gyroZ;
    double magX, magY, magZ;
    double orientX, orientY, orientZ;
    double pressure, altitude, movingState;
    double tempLeft, tempRight;
    double imuTime, magTime, baroTime;
    double imuRate;
};

// Guarded by the window's dataMutex.
//
// The series keep the newest rows only. Each group of series that is appended together (the
// IMU rows, the IMU-timed temperatures, the barometer samples, the magnetometer samples) keeps
// at least kKeptSeconds of its own time base, which covers the chart's longest window with its
// margin; but no series ever holds more than its share of kBudgetBytes, so at high rates a
// group keeps what fits. Rows leave a chunk at a time and keep their numbers meanwhile.
struct SensorSeries {
    static constexpr double kKeptSeconds = 90.0;
    static constexpr std::size_t kBudgetBytes = std::size_t{64} << 20;

    // One value per new IMU sample, appended in this order.
    SampleColumn accX, accY, accZ;
    SampleColumn gyroX, gyroY, gyroZ;
    SampleColumn magX, magY, magZ;
    SampleColumn orientX, orientY, orientZ;
    SampleColumn pressure, altitude, movingState;
    SampleColumn tempLeft, tempRight;
    SampleColumn imuTime, magTime, baroTime;
    // The measured rate with each IMU row: a new sample has a new timestamp, so there always is
    // one.
    SampleColumn imuRate;

    // Appended on events only.
    // Temperatures at the IMU rate, for cameras without barometer samples to time them.
    SampleColumn tempFallbackTime, tempFallbackLeft, tempFallbackRight;
    // Temperatures with each barometer sample (baroSampleTime).
    SampleColumn tempSampleLeft, tempSampleRight;
    SampleColumn baroRate, baroSamplePressure, baroSampleTime;
    SampleColumn magRate, magSampleX, magSampleY, magSampleZ, magSampleTime;

    void appendImuRow(const ImuRow& row);
    void appendFallbackTemperatures(double time, double left, double right);
    void appendBarometerSample(double rate, double pressure, double time, double tempLeft,
                               double tempRight);
    void appendMagnetometerSample(double rate, double x, double y, double z, double time);

    void clear();
    // One past the newest IMU row: the number of IMU rows appended since the last clear().
    RowNumber endRow() const { return imuTime.endRow(); }
    // Memory held by the values of every series.
    std::size_t bytes() const;

    // The most chunks one series holds: every series at its most stays within the budget.
    static int maxChunksPerSeries();
};

// Written by the sampling thread without the lock and read by the GUI as plain values: a stale
// reading is fine, a torn one is avoided by the atomics.
struct SensorLevels {
    std::atomic<float> accRange{15.f}, gyroRange{15.f}, magRange{6.5f}, orientRange{45.f};
    std::atomic<float> pressureMax{1050.f}, pressureMin{1000.f};
    std::atomic<float> altitudeMax{5.f}, altitudeMin{0.f};
    std::atomic<float> temperatureMax{45.f}, temperatureMin{45.f};

    std::atomic<double> imuEffectiveRate{0.0}, baroEffectiveRate{0.0}, magEffectiveRate{0.0};
    std::atomic<bool> magIsCalibrated{false};
    std::atomic<double> currentTime{0.0};
    std::atomic<std::uint64_t> firstImuTime{0}, firstMagTime{0}, firstBaroTime{0};
};
