#include "SensorSamples.h"

namespace {

template <typename Fn>
void forEachSeries(SensorSeries& s, Fn fn) {
    for (QVector<double>* v : {&s.accX,           &s.accY,
                               &s.accZ,           &s.gyroX,
                               &s.gyroY,          &s.gyroZ,
                               &s.magX,           &s.magY,
                               &s.magZ,           &s.orientX,
                               &s.orientY,        &s.orientZ,
                               &s.pressure,       &s.altitude,
                               &s.movingState,    &s.tempLeft,
                               &s.tempRight,      &s.imuTime,
                               &s.magTime,        &s.baroTime,
                               &s.imuRate,        &s.tempFallbackTime,
                               &s.tempSampleLeft, &s.tempSampleRight,
                               &s.baroRate,       &s.baroSamplePressure,
                               &s.baroSampleTime, &s.magRate,
                               &s.magSampleX,     &s.magSampleY,
                               &s.magSampleZ,     &s.magSampleTime})
        fn(*v);
}

}  // namespace

void SensorSeries::clear() {
    forEachSeries(*this, [](QVector<double>& v) { v.clear(); });
}

void SensorSeries::reserve(int count) {
    forEachSeries(*this, [count](QVector<double>& v) { v.reserve(count); });
}
