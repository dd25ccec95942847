// Turns the camera's sensor records into rows of the sample series: skips repeated records,
// measures the rate of each sensor from successive timestamps, widens the running ranges and,
// while a recording runs, decides when a row is written.
#pragma once

#include <bw/sensors.hpp>
#include <cstdint>
#include <mutex>

#include "SensorSamples.h"

// What a recording needs from the sampling thread. saveRow runs on the sampling thread with
// the data lock held; `latest` is the sensor record that brought the row.
class RowRecorder {
public:
    virtual ~RowRecorder() = default;
    virtual bool isRecording() const = 0;
    virtual double rowsPerSecond() const = 0;
    virtual void saveRow(RowNumber row, const bw::SensorsData& latest) = 0;
};

// Smallest spacing in seconds between two recorded rows for f rows per second out of a stream
// of nominalRate samples per second.
double minimumRowSpacing(double f, double nominalRate);

// The loop's memory of previous timestamps and rates.
struct SampleClock {
    std::uint64_t previousImu = 0, previousBaro = 0, previousMag = 0;
    bool firstImu = true, firstBaro = true, firstMag = true;
    double imuRate = 0.0, baroRate = 0.0, magRate = 0.0;
    bool newBaro = false, newMag = false;
    double lastRecordedNs = 0.0;
    bool onboardTemperaturesRead = false;
};

class SampleIngest {
public:
    enum class Outcome {
        NoSample,  // the record holds no IMU sample
        Origin,    // the first IMU sample: it only sets the time origin
        Repeated,  // same IMU timestamp as before: nothing appended
        Appended,  // one row appended
    };

    // What the 3D view takes from an appended row.
    struct Pose {
        bw::Orientation orientation;
        float gravity[3] = {0.f, 0.f, 0.f};  // acceleration direction, unit length
        int movingState = 0;
    };

    static constexpr double kImuNominalRate = 400.0;

    SampleIngest(SensorSeries& series, SensorLevels& levels, std::mutex& dataMutex,
                 RowRecorder* recorder = nullptr);

    Outcome ingest(const bw::SensorsData& record);
    const Pose& pose() const { return lastPose; }
    const SampleClock& clock() const { return sampleClock; }

private:
    struct Row;
    void measureBarometer(const bw::SensorsData& record, std::uint64_t& b);
    void measureMagnetometer(const bw::SensorsData& record, std::uint64_t& m);
    // Each fills its part of the row and widens the ranges its values reach.
    void takeMotion(const bw::SensorsData& record, Row& row);
    void takeMagneticField(const bw::SensorsData& record, Row& row);
    void takeOrientation(const bw::SensorsData& record, Row& row);
    void takeBarometer(const bw::SensorsData& record, Row& row);
    void takeTemperatures(const bw::SensorsData& record, Row& row);
    // What the orientation view is handed.
    void keepPose(const bw::SensorsData& record);
    void append(const Row& row, std::uint64_t t, std::uint64_t b, std::uint64_t m,
                const bw::SensorsData& record);
    void recordIfDue(std::uint64_t t, const bw::SensorsData& record);

    SensorSeries& series;
    SensorLevels& levels;
    std::mutex& dataMutex;
    RowRecorder* recorder;
    SampleClock sampleClock;
    Pose lastPose;
};
