// The sensor sample state shared between the sampling thread and the window: the series (one
// row per new IMU sample, plus event series), and the running ranges and rates that the GUI
// reads without the lock.
#pragma once

#include <QVector>
#include <atomic>
#include <cstdint>

// Guarded by the window's dataMutex.
struct SensorSeries {
    // One value per new IMU sample, appended in this order.
    QVector<double> accX, accY, accZ;
    QVector<double> gyroX, gyroY, gyroZ;
    QVector<double> magX, magY, magZ;
    QVector<double> orientX, orientY, orientZ;
    QVector<double> pressure, altitude, movingState;
    QVector<double> tempLeft, tempRight;
    QVector<double> imuTime, magTime, baroTime;

    // Appended on events only.
    QVector<double> imuRate;
    // Temperatures at the IMU rate, for cameras without barometer samples to time them.
    QVector<double> tempFallbackTime, tempFallbackLeft, tempFallbackRight;
    // Temperatures with each barometer sample (baroSampleTime).
    QVector<double> tempSampleLeft, tempSampleRight;
    QVector<double> baroRate, baroSamplePressure, baroSampleTime;
    QVector<double> magRate, magSampleX, magSampleY, magSampleZ, magSampleTime;

    void clear();
    void reserve(int count);
    int rows() const { return imuTime.size(); }
    // Bytes held by the values of every series, or by their reserved capacity.
    double valueBytes() const;
    double capacityBytes() const;
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
