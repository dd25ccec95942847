#include "SensorSamples.h"

namespace {

// Every series of SensorSeries; the assertion catches one added without being listed here.
template <typename Series, typename Fn>
void forEachSeries(Series& s, Fn fn) {
    for (auto* v : {&s.accX,
                    &s.accY,
                    &s.accZ,
                    &s.gyroX,
                    &s.gyroY,
                    &s.gyroZ,
                    &s.magX,
                    &s.magY,
                    &s.magZ,
                    &s.orientX,
                    &s.orientY,
                    &s.orientZ,
                    &s.pressure,
                    &s.altitude,
                    &s.movingState,
                    &s.tempLeft,
                    &s.tempRight,
                    &s.imuTime,
                    &s.magTime,
                    &s.baroTime,
                    &s.imuRate,
                    &s.tempFallbackTime,
                    &s.tempFallbackLeft,
                    &s.tempFallbackRight,
                    &s.tempSampleLeft,
                    &s.tempSampleRight,
                    &s.baroRate,
                    &s.baroSamplePressure,
                    &s.baroSampleTime,
                    &s.magRate,
                    &s.magSampleX,
                    &s.magSampleY,
                    &s.magSampleZ,
                    &s.magSampleTime})
        fn(*v);
}
static_assert(sizeof(SensorSeries) == 34 * sizeof(QVector<double>),
              "forEachSeries must list every series of SensorSeries");

}  // namespace

void SensorSeries::clear() {
    forEachSeries(*this, [](QVector<double>& v) { v.clear(); });
}

void SensorSeries::reserve(int count) {
    forEachSeries(*this, [count](QVector<double>& v) { v.reserve(count); });
}

double SensorSeries::valueBytes() const {
    double bytes = 0.0;
    forEachSeries(*this, [&bytes](const QVector<double>& v) {
        bytes += static_cast<double>(v.size()) * sizeof(double);
    });
    return bytes;
}

double SensorSeries::capacityBytes() const {
    double bytes = 0.0;
    forEachSeries(*this, [&bytes](const QVector<double>& v) {
        bytes += static_cast<double>(v.capacity()) * sizeof(double);
    });
    return bytes;
}
