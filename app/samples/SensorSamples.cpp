#include "SensorSamples.h"

#include <array>

namespace {

using S = SensorSeries;
using Column = SampleColumn SensorSeries::*;

// The groups of series appended together; the first series of each is its time base.
constexpr std::array<Column, 21> kImuRowSeries{
    &S::imuTime, &S::accX,     &S::accY,     &S::accZ,        &S::gyroX,    &S::gyroY,
    &S::gyroZ,   &S::magX,     &S::magY,     &S::magZ,        &S::orientX,  &S::orientY,
    &S::orientZ, &S::pressure, &S::altitude, &S::movingState, &S::tempLeft, &S::tempRight,
    &S::magTime, &S::baroTime, &S::imuRate};
constexpr std::array<Column, 3> kFallbackTemperatureSeries{
    &S::tempFallbackTime, &S::tempFallbackLeft, &S::tempFallbackRight};
constexpr std::array<Column, 5> kBarometerSeries{&S::baroSampleTime, &S::baroRate,
                                                 &S::baroSamplePressure, &S::tempSampleLeft,
                                                 &S::tempSampleRight};
constexpr std::array<Column, 5> kMagnetometerSeries{&S::magSampleTime, &S::magRate, &S::magSampleX,
                                                    &S::magSampleY, &S::magSampleZ};

constexpr std::size_t kSeriesCount = kImuRowSeries.size() + kFallbackTemperatureSeries.size() +
                                     kBarometerSeries.size() + kMagnetometerSeries.size();
static_assert(sizeof(SensorSeries) == kSeriesCount * sizeof(SampleColumn),
              "every series of SensorSeries must belong to one of the groups");

template <typename Series, typename Fn>
void forEachSeries(Series& s, Fn fn) {
    for (Column c : kImuRowSeries) fn(s.*c);
    for (Column c : kFallbackTemperatureSeries) fn(s.*c);
    for (Column c : kBarometerSeries) fn(s.*c);
    for (Column c : kMagnetometerSeries) fn(s.*c);
}

// Lets the oldest chunk of the group go while its time base has more chunks than the budget
// allows, or while that chunk lies wholly more than kKeptSeconds before the group's newest row.
template <std::size_t N>
void keepRecent(SensorSeries& s, const std::array<Column, N>& group) {
    const SampleColumn& time = s.*group.front();
    const double oldestKept = time.last() - SensorSeries::kKeptSeconds;
    while (time.chunkCount() > SensorSeries::maxChunksPerSeries() ||
           (time.chunkCount() > 1 && time.at(time.oldestChunkLastRow()) < oldestKept))
        for (Column c : group) (s.*c).dropOldestChunk();
}

}  // namespace

int SensorSeries::maxChunksPerSeries() {
    return static_cast<int>(kBudgetBytes / (kSeriesCount * SampleColumn::kChunkBytes));
}

void SensorSeries::appendImuRow(const ImuRow& r) {
    accX.append(r.accX), accY.append(r.accY), accZ.append(r.accZ);
    gyroX.append(r.gyroX), gyroY.append(r.gyroY), gyroZ.append(r.gyroZ);
    magX.append(r.magX), magY.append(r.magY), magZ.append(r.magZ);
    orientX.append(r.orientX), orientY.append(r.orientY), orientZ.append(r.orientZ);
    pressure.append(r.pressure), altitude.append(r.altitude), movingState.append(r.movingState);
    tempLeft.append(r.tempLeft), tempRight.append(r.tempRight);
    imuTime.append(r.imuTime), magTime.append(r.magTime), baroTime.append(r.baroTime);
    imuRate.append(r.imuRate);
    keepRecent(*this, kImuRowSeries);
}

void SensorSeries::appendFallbackTemperatures(double time, double left, double right) {
    tempFallbackTime.append(time);
    tempFallbackLeft.append(left);
    tempFallbackRight.append(right);
    keepRecent(*this, kFallbackTemperatureSeries);
}

void SensorSeries::appendBarometerSample(double rate, double pressureHpa, double time, double left,
                                         double right) {
    baroRate.append(rate);
    baroSamplePressure.append(pressureHpa);
    baroSampleTime.append(time);
    tempSampleLeft.append(left);
    tempSampleRight.append(right);
    keepRecent(*this, kBarometerSeries);
}

void SensorSeries::appendMagnetometerSample(double rate, double x, double y, double z,
                                            double time) {
    magRate.append(rate);
    magSampleX.append(x), magSampleY.append(y), magSampleZ.append(z);
    magSampleTime.append(time);
    keepRecent(*this, kMagnetometerSeries);
}

void SensorSeries::clear() {
    forEachSeries(*this, [](SampleColumn& c) { c.clear(); });
}

std::size_t SensorSeries::bytes() const {
    std::size_t total = 0;
    forEachSeries(*this, [&total](const SampleColumn& c) { total += c.bytes(); });
    return total;
}
