#include "SensorTable.h"

#include <QCoreApplication>

namespace {

using S = SensorSeries;
using L = SensorLevels;

// Nominal rates in samples per second.
constexpr int kImuRate = 400;
constexpr int kMagRate = 50;
constexpr int kBaroRate = 25;

SensorValueAxis symmetric(Level largest) { return {largest, nullptr, nullptr}; }
SensorValueAxis between(Level minimum, Level maximum) { return {nullptr, minimum, maximum}; }

// Measuring ranges: the inertial chip's full scales (16 g, 2000 °/s), the magnetometer's
// saturated reading, the Euler angles' span, the barometer's and the temperature sensors'
// ranges.
constexpr double kStandardGravity = 9.80665;
constexpr ReadingRange kAccRange{-16.0 * kStandardGravity, 16.0 * kStandardGravity};
constexpr ReadingRange kGyroRange{-2000.0, 2000.0};
constexpr ReadingRange kMagRange{-2048.0, 2048.0};
constexpr ReadingRange kOrientRange{-180.0, 180.0};
constexpr ReadingRange kPressureRange{260.0, 1260.0};
constexpr ReadingRange kTemperatureRange{-40.0, 125.0};

// X, Y and Z in their colours, five characters wide with three decimals.
SensorReadoutLook threeAxes(std::array<const char*, 3> formats, std::array<Series, 3> series,
                            Rate rate, ReadingRange range) {
    return {formats, series, {&Style::valueX, &Style::valueY, &Style::valueZ}, 5, 3, rate, range};
}

const std::array<SensorInfo, 6> kSensors{{
    {Sensor::ACCELEROMETER,
     {"Accelerometer", "Accelerometer @ ", "Accelerometer"},
     {DataPlot::ACCELEROMETER,
      DataPlot::ACC_X,
      {&S::accX, &S::accY, &S::accZ},
      TimeBase::IMU,
      {},
      kImuRate},
     symmetric(&L::accRange),
     threeAxes({"X %1 m/s²", "Y %1 m/s²", "Z %1 m/s²"}, {&S::accX, &S::accY, &S::accZ},
               &L::imuEffectiveRate, kAccRange)},
    {Sensor::GYROSCOPE,
     {"Gyroscope", "Gyroscope @ ", "Gyroscope"},
     {DataPlot::GYROSCOPE,
      DataPlot::GYR_X,
      {&S::gyroX, &S::gyroY, &S::gyroZ},
      TimeBase::IMU,
      {},
      kImuRate},
     symmetric(&L::gyroRange),
     threeAxes({"X %1 °/s", "Y %1 °/s", "Z %1 °/s"}, {&S::gyroX, &S::gyroY, &S::gyroZ},
               &L::imuEffectiveRate, kGyroRange)},
    // The chart draws the magnetometer's own samples, the readout the newest as repeated at the
    // IMU rate.
    {Sensor::MAGNETOMETER,
     {"Magnetometer", "Magnetometer @ ", "Magnetometer [%1]"},
     {DataPlot::MAGNETOMETER,
      DataPlot::MAG_X,
      {&S::magSampleX, &S::magSampleY, &S::magSampleZ},
      TimeBase::MAGNETOMETER,
      {},
      kMagRate},
     symmetric(&L::magRange),
     threeAxes({"X %1 µT", "Y %1 µT", "Z %1 µT"}, {&S::magX, &S::magY, &S::magZ},
               &L::magEffectiveRate, kMagRange)},
    {Sensor::ORIENTATION,
     {"Orientation", "Orientation @ ", "Orientation"},
     {DataPlot::ORIENTATION,
      DataPlot::OR_X,
      {&S::orientX, &S::orientY, &S::orientZ},
      TimeBase::IMU,
      {},
      kImuRate},
     symmetric(&L::orientRange),
     threeAxes({"X %1°", "Y %1°", "Z %1°"}, {&S::orientX, &S::orientY, &S::orientZ},
               &L::imuEffectiveRate, kOrientRange)},
    {Sensor::BAROMETER,
     {"Barometer", "Barometer @ ", "Barometer"},
     {DataPlot::BAROMETER,
      DataPlot::REL_ALTITUDE,
      {&S::baroSamplePressure, nullptr, nullptr},
      TimeBase::BAROMETER,
      {},
      kBaroRate},
     between(&L::pressureMin, &L::pressureMax),
     {{"Atmospheric Pressure %1 hPa", nullptr, nullptr},
      {&S::pressure, nullptr, nullptr},
      {&Style::valueSingle, nullptr, nullptr},
      7,
      2,
      &L::baroEffectiveRate,
      kPressureRange}},
    // The readout is crossed on purpose: the first field, coloured like the left camera's
    // curve, is worded "Right"; the second "Left".
    {Sensor::TEMPERATURE,
     {"Camera Temperature", "Temperature @ ", "Temperature"},
     {DataPlot::TEMPERATURE,
      DataPlot::TEMP_LEFT,
      {&S::tempSampleLeft, &S::tempSampleRight, nullptr},
      TimeBase::TEMPERATURE,
      {&S::tempFallbackLeft, &S::tempFallbackRight, nullptr},
      kBaroRate},
     between(&L::temperatureMin, &L::temperatureMax),
     {{"Right %1°C", "Left %1°C", nullptr},
      {&S::tempLeft, &S::tempRight, nullptr},
      {&Style::valueY, &Style::valueZ, nullptr},
      1,
      2,
      &L::baroEffectiveRate,
      kTemperatureRange}},
}};

}  // namespace

const SensorInfo& sensorInfo(Sensor sensor) { return kSensors[static_cast<std::size_t>(sensor)]; }

std::optional<Sensor> sensorNamed(const QString& name) {
    for (const SensorInfo& info : kSensors)
        if (name == QLatin1String(info.labels.name)) return info.sensor;
    return std::nullopt;
}

QString translated(const char* text) { return QCoreApplication::translate("MainWindow", text); }
