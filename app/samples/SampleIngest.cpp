#include "SampleIngest.h"

#include <algorithm>
#include <cmath>

#include "Angles.h"

namespace {

using Location = bw::SensorsData::TemperatureData::SENSOR_LOCATION;

void raiseTo(std::atomic<float>& bound, float value) {
    if (value > bound.load(std::memory_order_relaxed))
        bound.store(value, std::memory_order_relaxed);
}

float largestMagnitude(float a, float b, float c) {
    return std::max({std::fabs(a), std::fabs(b), std::fabs(c)});
}

// Rate of a secondary sensor from its timestamp; the first non-zero stamp only sets the origin.
// Returns true when the stamp is a new sample.
bool measureStream(std::uint64_t stamp, std::uint64_t& previous, bool& first, double& rate,
                   std::atomic<std::uint64_t>& firstTime) {
    if (stamp == 0) return false;
    if (first) {
        first = false;
        previous = stamp;
        firstTime.store(stamp, std::memory_order_relaxed);
        return false;
    }
    const double interval = static_cast<double>(stamp - previous) / 1e9;
    if (interval == 0.0) return false;
    previous = stamp;
    rate = 1.0 / interval;
    return true;
}

}  // namespace

double minimumRowSpacing(double f, double nominalRate) {
    return std::max(0.9 / f, (nominalRate - f) / (f * nominalRate));
}

struct SampleIngest::Row {
    float ax, ay, az, gx, gy, gz;
    float ux, uy, uz;
    double ox, oy, oz;
    double pressure, altitude, movingState;
    float tempLeft, tempRight;
    double imuTime, magTime, baroTime;
};

SampleIngest::SampleIngest(SensorSeries& series_, SensorLevels& levels_, std::mutex& dataMutex_,
                           RowRecorder* recorder_)
    : series(series_), levels(levels_), dataMutex(dataMutex_), recorder(recorder_) {}

SampleIngest::Outcome SampleIngest::ingest(const bw::SensorsData& record) {
    levels.imuEffectiveRate.store(record.imu.effective_rate, std::memory_order_relaxed);
    const std::uint64_t t = record.imu.timestamp;
    if (t == 0) return Outcome::NoSample;
    SampleClock& c = sampleClock;
    if (c.firstImu) {
        c.firstImu = false;
        c.previousImu = t;
        levels.firstImuTime.store(t, std::memory_order_relaxed);
        c.lastRecordedNs = static_cast<double>(t);
        return Outcome::Origin;
    }
    if (t == c.previousImu) return Outcome::Repeated;

    // A new timestamp differs from the previous one: the interval is never zero.
    const double interval = static_cast<double>(t - c.previousImu) / 1e9;
    c.imuRate = 1.0 / interval;
    c.previousImu = t;
    std::uint64_t b = 0, m = 0;
    measureBarometer(record, b);
    measureMagnetometer(record, m);

    Row row{};
    takeMotion(record, row);
    takeMagneticField(record, row);
    takeOrientation(record, row);
    keepPose(record);
    takeBarometer(record, row);
    takeTemperatures(record, row);
    row.magTime = static_cast<double>(m) / 1e9;
    row.baroTime = static_cast<double>(b) / 1e9;
    row.imuTime = static_cast<double>(t) / 1e9;
    levels.currentTime.store(row.imuTime, std::memory_order_relaxed);
    append(row, t, b, m, record);
    return Outcome::Appended;
}

void SampleIngest::measureBarometer(const bw::SensorsData& record, std::uint64_t& b) {
    sampleClock.newBaro = false;
    if (!record.barometer.is_available) return;
    levels.baroEffectiveRate.store(record.barometer.effective_rate, std::memory_order_relaxed);
    b = record.barometer.timestamp;
    sampleClock.newBaro = measureStream(b, sampleClock.previousBaro, sampleClock.firstBaro,
                                        sampleClock.baroRate, levels.firstBaroTime);
}

void SampleIngest::measureMagnetometer(const bw::SensorsData& record, std::uint64_t& m) {
    sampleClock.newMag = false;
    if (!record.magnetometer.is_available) return;
    levels.magEffectiveRate.store(record.magnetometer.effective_rate, std::memory_order_relaxed);
    m = record.magnetometer.timestamp;
    sampleClock.newMag = measureStream(m, sampleClock.previousMag, sampleClock.firstMag,
                                       sampleClock.magRate, levels.firstMagTime);
}

void SampleIngest::takeMotion(const bw::SensorsData& record, Row& row) {
    const auto& a = record.imu.linear_acceleration;
    const auto& g = record.imu.angular_velocity;
    row.ax = a.x, row.ay = a.y, row.az = a.z;
    row.gx = g.x, row.gy = g.y, row.gz = g.z;
    raiseTo(levels.accRange, largestMagnitude(a.x, a.y, a.z));
    raiseTo(levels.gyroRange, largestMagnitude(g.x, g.y, g.z));
    row.movingState = static_cast<double>(record.camera_moving_state);
}

void SampleIngest::takeMagneticField(const bw::SensorsData& record, Row& row) {
    const auto& cal = record.magnetometer.magnetic_field_calibrated;
    const auto& u = record.magnetometer.magnetic_field_uncalibrated;
    levels.magIsCalibrated.store(cal != u, std::memory_order_relaxed);
    row.ux = u.x, row.uy = u.y, row.uz = u.z;
    // 2048 marks a saturated or invalid reading: stored, but it must not stretch the chart.
    if (std::fabs(u.z) != 2048.f) raiseTo(levels.magRange, largestMagnitude(u.x, u.y, u.z));
}

void SampleIngest::takeOrientation(const bw::SensorsData& record, Row& row) {
    const bw::Vector3<float> euler = record.imu.pose.getEulerAngles(true);
    row.ox = degreesFromRadians(euler.x);
    row.oy = degreesFromRadians(euler.y);
    row.oz = degreesFromRadians(euler.z);
    raiseTo(
        levels.orientRange,
        static_cast<float>(std::max({std::fabs(row.ox), std::fabs(row.oy), std::fabs(row.oz)})));
}

void SampleIngest::keepPose(const bw::SensorsData& record) {
    const auto& a = record.imu.linear_acceleration;
    const float norm = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
    lastPose.gravity[0] = a.x / norm;
    lastPose.gravity[1] = a.y / norm;
    lastPose.gravity[2] = a.z / norm;
    lastPose.orientation = record.imu.pose.getOrientation();
    lastPose.movingState = static_cast<int>(record.camera_moving_state);
}

// Until the barometer's first sample, and on cameras without one, the record reads a pressure
// and an altitude of 0. The row keeps the record as it is; the chart's ranges follow readings
// only, or a single 0 would stretch the pressure axis down to -100 hPa for the whole session.
void SampleIngest::takeBarometer(const bw::SensorsData& record, Row& row) {
    row.pressure = record.barometer.pressure / 100.0;
    const float h = record.barometer.relative_altitude;
    row.altitude = h;
    if (!record.barometer.is_available || record.barometer.timestamp == 0) return;
    const float p = static_cast<float>(row.pressure);
    if (levels.pressureMax.load() < p) levels.pressureMax.store(p + 100.f);
    if (levels.pressureMin.load() > p) levels.pressureMin.store(p - 100.f);
    // The factor follows the sign of the old bound, not of the new value.
    const float oldMax = levels.altitudeMax.load();
    if (oldMax < h) levels.altitudeMax.store(h * (oldMax > 0.f ? 1.1f : 0.9f));
    const float oldMin = levels.altitudeMin.load();
    if (oldMin > h) levels.altitudeMin.store(h * (oldMin > 0.f ? 0.9f : 1.1f));
}

void SampleIngest::takeTemperatures(const bw::SensorsData& record, Row& row) {
    const auto& temperature = record.temperature;
    float left = 0.f, right = 0.f;
    const bool leftRead = temperature.get(Location::ONBOARD_LEFT, left) == bw::SUCCESS;
    const bool rightRead = temperature.get(Location::ONBOARD_RIGHT, right) == bw::SUCCESS;
    sampleClock.onboardTemperaturesRead = leftRead && rightRead;
    if (!sampleClock.onboardTemperaturesRead) {
        float imu = 0.f;
        temperature.get(Location::IMU, imu);
        left = right = imu;
    }
    row.tempLeft = left;
    row.tempRight = right;
    if (std::max(left, right) > levels.temperatureMax.load())
        levels.temperatureMax.store(std::max(left, right) + 5.f);
    if (levels.temperatureMin.load() > std::min(left, right))
        levels.temperatureMin.store(std::min(left, right) - 5.f);
}

void SampleIngest::append(const Row& r, std::uint64_t t, std::uint64_t b, std::uint64_t m,
                          const bw::SensorsData& record) {
    const SampleClock& c = sampleClock;
    std::lock_guard<std::mutex> lock(dataMutex);
    SensorSeries& s = series;
    s.appendImuRow({r.ax,       r.ay,       r.az,          r.gx,       r.gy,        r.gz,
                    r.ux,       r.uy,       r.uz,          r.ox,       r.oy,        r.oz,
                    r.pressure, r.altitude, r.movingState, r.tempLeft, r.tempRight, r.imuTime,
                    r.magTime,  r.baroTime, c.imuRate});
    // A camera whose onboard sensors fail, or that has no barometer to time its temperatures,
    // gets them at the IMU rate, in series of their own.
    if (!c.onboardTemperaturesRead || !record.barometer.is_available)
        s.appendFallbackTemperatures(r.imuTime, r.tempLeft, r.tempRight);
    if (b != 0 && c.newBaro)
        s.appendBarometerSample(c.baroRate, r.pressure, r.baroTime, r.tempLeft, r.tempRight);
    if (m != 0 && c.newMag) s.appendMagnetometerSample(c.magRate, r.ux, r.uy, r.uz, r.magTime);
    recordIfDue(t, record);
}

void SampleIngest::recordIfDue(std::uint64_t t, const bw::SensorsData& record) {
    if (recorder == nullptr || !recorder->isRecording()) return;
    const double spacing = minimumRowSpacing(recorder->rowsPerSecond(), kImuNominalRate);
    if ((static_cast<double>(t) - sampleClock.lastRecordedNs) / 1e9 > spacing) {
        recorder->saveRow(series.endRow() - 1, record);
        sampleClock.lastRecordedNs = static_cast<double>(t);
    }
}
