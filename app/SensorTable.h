// The six sensors the window shows, one row each: their names and labels, the chart's curves and
// the series that feed them, how the value axis follows the readings, and the readout's texts.
// The chart, the readout and the sensor buttons read this table instead of testing names.
#pragma once

#include <QString>
#include <array>
#include <atomic>
#include <optional>

#include "DataPlot.h"
#include "SensorSamples.h"
#include "style.h"

enum class Sensor { ACCELEROMETER, GYROSCOPE, MAGNETOMETER, ORIENTATION, BAROMETER, TEMPERATURE };

// Where a sensor's chart takes its points from.
enum class TimeBase {
    IMU,  // one point per IMU sample (imuTime), with a margin so the left edge stays filled
    MAGNETOMETER,  // one point per magnetometer sample (magSampleTime)
    BAROMETER,     // one point per barometer sample (baroSampleTime)
    TEMPERATURE,   // the barometer's samples, or the IMU's when the camera has no barometer samples
};

using Series = SampleColumn SensorSeries::*;
using Level = std::atomic<float> SensorLevels::*;
using Rate = std::atomic<double> SensorLevels::*;

// All texts are in the window's translation context (translated()).
struct SensorLabels {
    const char* name;  // the window's name of the sensor, "Accelerometer" ...
    const char* type;  // beside the rate: "Accelerometer @ "
    const char* top;   // above the chart
};

struct SensorChart {
    DataPlot::SensorType plotType;
    DataPlot::DataType firstCurve;
    std::array<Series, 3> curves;  // values of the curves from firstCurve on; null: no curve
    TimeBase timeBase;
    // The curves' values when a TEMPERATURE time base falls back to the IMU's samples.
    std::array<Series, 3> fallbackCurves;
    int nominalRate;  // samples per second of the sensor: the chart's window, the readout's cap
};

// Symmetric around zero by the largest absolute reading, or from the running minimum to the
// running maximum.
struct SensorValueAxis {
    Level largest;
    Level minimum;
    Level maximum;
};

// The lowest and the highest reading a sensor gives, the ends of its measuring range: the
// read-out fields keep room for the texts of both.
struct ReadingRange {
    double lowest, highest;
};

// One text per field with %1 for the newest value of its series, in the field's style (coloured
// like its curve). A null text hides the field.
struct SensorReadoutLook {
    std::array<const char*, 3> formats;
    std::array<Series, 3> series;
    std::array<QString Style::*, 3> styles;
    int width, precision;
    Rate effectiveRate;  // as the camera measures it
    ReadingRange range;
};

struct SensorInfo {
    Sensor sensor;
    SensorLabels labels;
    SensorChart chart;
    SensorValueAxis axis;
    SensorReadoutLook readout;
};

const SensorInfo& sensorInfo(Sensor sensor);
// The row of a window name ("Accelerometer", ...); empty for any other text.
std::optional<Sensor> sensorNamed(const QString& name);

// A text of the table as the window shows it.
QString translated(const char* text);
