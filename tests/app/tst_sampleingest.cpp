// The sampling rules on hand-made sensor records: origins, repeats, rates, ranges, temperature
// fallback, event series and the spacing of recorded rows.
#include <QtTest>
#include <cmath>

#include "SampleIngest.h"

namespace {

using Location = bw::SensorsData::TemperatureData::SENSOR_LOCATION;

constexpr std::uint64_t kStart = 1'700'000'000'000'000'000ull;
constexpr std::uint64_t kImuPeriod = 2'500'000;  // 400 Hz

bw::SensorsData record(std::uint64_t t) {
    bw::SensorsData d;
    d.imu.is_available = true;
    d.imu.timestamp = t;
    d.imu.linear_acceleration = {0.f, 0.f, 9.81f};
    d.imu.effective_rate = 400.f;
    d.temperature.available[0] = true;
    d.temperature.value[0] = 38.f;
    d.temperature.available[2] = d.temperature.available[3] = true;
    d.temperature.value[2] = 41.f;
    d.temperature.value[3] = 42.f;
    return d;
}

// A record that carries a barometer sample taken with it.
bw::SensorsData withBarometer(bw::SensorsData d, float pascals, float altitude) {
    d.barometer.is_available = true;
    d.barometer.timestamp = d.imu.timestamp;
    d.barometer.pressure = pascals;
    d.barometer.relative_altitude = altitude;
    return d;
}

struct CountingRecorder : RowRecorder {
    double frequency = 400.0;
    QVector<RowNumber> rows;
    bool isRecording() const override { return true; }
    double rowsPerSecond() const override { return frequency; }
    void saveRow(RowNumber row, const bw::SensorsData&) override { rows.append(row); }
};

int count(const SampleColumn& series) { return static_cast<int>(series.size()); }

}  // namespace

class TestSampleIngest : public QObject {
    Q_OBJECT

    SensorSeries series;
    SensorLevels* levels = nullptr;
    std::mutex mutex;

private slots:
    void init() {
        series.clear();
        delete levels;
        levels = new SensorLevels;
    }
    void cleanupTestCase() { delete levels; }

    void firstSampleOnlySetsTheOrigin() {
        SampleIngest ingest(series, *levels, mutex);
        QCOMPARE(ingest.ingest(record(0)), SampleIngest::Outcome::NoSample);
        QCOMPARE(ingest.ingest(record(kStart)), SampleIngest::Outcome::Origin);
        QCOMPARE(series.endRow().value(), 0);
        QCOMPARE(levels->firstImuTime.load(), kStart);
        QCOMPARE(ingest.ingest(record(kStart + kImuPeriod)), SampleIngest::Outcome::Appended);
        QCOMPARE(series.endRow().value(), 1);
        QCOMPARE(count(series.imuRate), 1);
        QVERIFY(std::fabs(series.imuRate.first() - 400.0) < 1e-6);
        QCOMPARE(series.imuTime.first(), static_cast<double>(kStart + kImuPeriod) / 1e9);
        QCOMPARE(ingest.ingest(record(kStart + kImuPeriod)), SampleIngest::Outcome::Repeated);
        QCOMPARE(series.endRow().value(), 1);
        QCOMPARE(count(series.imuRate), 1);
    }

    void secondarySensorsMeasureTheirRateFromTheSecondSample() {
        SampleIngest ingest(series, *levels, mutex);
        ingest.ingest(record(kStart));
        for (int i = 1; i <= 40; ++i) {
            bw::SensorsData d = record(kStart + i * kImuPeriod);
            d.barometer.is_available = true;
            d.barometer.timestamp = kStart + (i / 16) * 16 * kImuPeriod;  // 25 Hz
            d.barometer.pressure = 101325.f;
            d.magnetometer.is_available = true;
            d.magnetometer.timestamp = kStart + (i / 8) * 8 * kImuPeriod;  // 50 Hz
            ingest.ingest(d);
        }
        // Barometer stamps: i/16 = 0, 1, 2 -> origin at the first, new samples at 16 and 32.
        QCOMPARE(count(series.baroRate), 2);
        QVERIFY(std::fabs(series.baroRate.first() - 25.0) < 1e-6);
        QCOMPARE(series.baroSamplePressure.first(), 1013.25);
        QCOMPARE(count(series.tempSampleLeft), 2);
        QCOMPARE(count(series.magRate), 5);
        QVERIFY(std::fabs(series.magRate.first() - 50.0) < 1e-6);
        QCOMPARE(count(series.magSampleTime), 5);
    }

    void saturatedMagnetometerDoesNotWidenTheRange() {
        SampleIngest ingest(series, *levels, mutex);
        ingest.ingest(record(kStart));
        bw::SensorsData d = record(kStart + kImuPeriod);
        d.magnetometer.magnetic_field_uncalibrated = {10.f, -20.f, 2048.f};
        ingest.ingest(d);
        QCOMPARE(levels->magRange.load(), 6.5f);
        QCOMPARE(series.magZ.last(), 2048.0);
        d = record(kStart + 2 * kImuPeriod);
        d.magnetometer.magnetic_field_uncalibrated = {10.f, -20.f, 2047.f};
        ingest.ingest(d);
        QCOMPARE(levels->magRange.load(), 2047.f);
    }

    void calibratedFlagFollowsTheRecord() {
        SampleIngest ingest(series, *levels, mutex);
        ingest.ingest(record(kStart));
        bw::SensorsData d = record(kStart + kImuPeriod);
        d.magnetometer.magnetic_field_uncalibrated = {1.f, 2.f, 3.f};
        d.magnetometer.magnetic_field_calibrated = {1.f, 2.f, 3.f};
        ingest.ingest(d);
        QVERIFY(!levels->magIsCalibrated);
        d.imu.timestamp += kImuPeriod;
        d.magnetometer.magnetic_field_calibrated.z = 3.5f;
        ingest.ingest(d);
        QVERIFY(levels->magIsCalibrated);
    }

    void altitudeBoundsFollowTheSignOfTheOldBound_data() {
        QTest::addColumn<float>("oldMin");
        QTest::addColumn<float>("oldMax");
        QTest::addColumn<float>("altitude");
        QTest::addColumn<float>("newMin");
        QTest::addColumn<float>("newMax");
        QTest::newRow("negative below negative min") << -1.f << 5.f << -2.f << -2.2f << 5.f;
        QTest::newRow("negative below zero min") << 0.f << 5.f << -2.f << -2.2f << 5.f;
        QTest::newRow("positive below positive min") << 3.f << 5.f << 2.f << 1.8f << 5.f;
        QTest::newRow("above positive max") << 0.f << 5.f << 10.f << 0.f << 11.f;
        QTest::newRow("above negative max") << -10.f << -5.f << -4.f << -10.f << -3.6f;
    }
    void altitudeBoundsFollowTheSignOfTheOldBound() {
        QFETCH(float, oldMin);
        QFETCH(float, oldMax);
        QFETCH(float, altitude);
        QFETCH(float, newMin);
        QFETCH(float, newMax);
        levels->altitudeMin = oldMin;
        levels->altitudeMax = oldMax;
        SampleIngest ingest(series, *levels, mutex);
        ingest.ingest(record(kStart));
        ingest.ingest(withBarometer(record(kStart + kImuPeriod), 101325.f, altitude));
        QVERIFY(std::fabs(levels->altitudeMin - newMin) < 1e-5f);
        QVERIFY(std::fabs(levels->altitudeMax - newMax) < 1e-5f);
    }

    void pressureAndTemperatureBoundsKeepTheirMargins() {
        SampleIngest ingest(series, *levels, mutex);
        ingest.ingest(record(kStart));
        ingest.ingest(withBarometer(record(kStart + kImuPeriod), 110000.f, 0.f));  // 1100 hPa
        QCOMPARE(levels->pressureMax.load(), 1200.f);
        QCOMPARE(levels->pressureMin.load(), 1000.f);
        QCOMPARE(levels->temperatureMax.load(), 45.f);
        QCOMPARE(levels->temperatureMin.load(), 36.f);  // min(41, 42) - 5
    }

    // Before the barometer's first sample the record reads 0 hPa: the row keeps it, the ranges
    // do not, so the pressure axis stays around the readings.
    void rangesFollowBarometerReadingsOnly() {
        SampleIngest ingest(series, *levels, mutex);
        ingest.ingest(record(kStart));
        bw::SensorsData beforeFirstSample = record(kStart + kImuPeriod);
        beforeFirstSample.barometer.is_available = true;
        ingest.ingest(beforeFirstSample);
        ingest.ingest(record(kStart + 2 * kImuPeriod));  // a camera without a barometer
        ingest.ingest(withBarometer(record(kStart + 3 * kImuPeriod), 99768.f, -0.5f));
        QCOMPARE(series.pressure.at(series.pressure.firstRow()), 0.0);
        QCOMPARE(levels->pressureMin.load(), 897.68f);
        QCOMPARE(levels->pressureMax.load(), 1050.f);
        QCOMPARE(levels->altitudeMin.load(), -0.55f);
        QCOMPARE(levels->altitudeMax.load(), 5.f);
    }

    void missingOnboardTemperaturesFallBackToTheImu() {
        SampleIngest ingest(series, *levels, mutex);
        ingest.ingest(record(kStart));
        bw::SensorsData d = record(kStart + kImuPeriod);
        d.temperature.available[static_cast<int>(Location::ONBOARD_RIGHT)] = false;
        ingest.ingest(d);
        QCOMPARE(series.tempLeft.last(), 38.0);
        QCOMPARE(series.tempRight.last(), 38.0);
        QCOMPARE(series.tempFallbackTime.last(), series.imuTime.first());
    }

    // Every temperature sample has its own time: the barometer's samples time one series, the
    // IMU's the other, whichever of them a camera with a failing onboard sensor feeds.
    void temperatureSamplesPairWithTheirTimes_data() {
        QTest::addColumn<bool>("barometer");
        QTest::addColumn<bool>("onboard");
        QTest::newRow("barometer, onboard sensors") << true << true;
        QTest::newRow("barometer, onboard sensor failing") << true << false;
        QTest::newRow("no barometer, onboard sensors") << false << true;
        QTest::newRow("no barometer, onboard sensor failing") << false << false;
    }
    void temperatureSamplesPairWithTheirTimes() {
        QFETCH(bool, barometer);
        QFETCH(bool, onboard);
        SampleIngest ingest(series, *levels, mutex);
        for (int k = 0; k < 200; ++k) {
            bw::SensorsData d = record(kStart + k * kImuPeriod);
            d.barometer.is_available = barometer;
            // 25 Hz: a new barometer sample every 16th IMU sample.
            if (barometer) d.barometer.timestamp = kStart + (k / 16) * 16 * kImuPeriod;
            d.temperature.available[static_cast<int>(Location::ONBOARD_LEFT)] = onboard;
            ingest.ingest(d);
        }
        QCOMPARE(count(series.tempSampleLeft), count(series.baroSampleTime));
        QCOMPARE(count(series.tempSampleRight), count(series.baroSampleTime));
        QCOMPARE(count(series.tempFallbackLeft), count(series.tempFallbackTime));
        QCOMPARE(count(series.tempFallbackRight), count(series.tempFallbackTime));
        // Without barometer samples to time them, the temperatures follow the IMU.
        QCOMPARE(series.tempFallbackTime.isEmpty(), barometer && onboard);
        QCOMPARE(series.baroSampleTime.isEmpty(), !barometer);
    }

    void orientationIsInDegrees() {
        SampleIngest ingest(series, *levels, mutex);
        ingest.ingest(record(kStart));
        bw::SensorsData d = record(kStart + kImuPeriod);
        d.imu.pose = bw::Transform(bw::Orientation(bw::Rotation(0.5f, {0.f, 0.f, 1.f})),
                                   bw::Translation(0.f, 0.f, 0.f));
        ingest.ingest(d);
        QVERIFY(std::fabs(series.orientZ.last() - 0.5 * 180.0 / M_PI) < 1e-3);
        QVERIFY(std::fabs(series.orientX.last()) < 1e-3);
        QCOMPARE(levels->orientRange.load(), 45.f);
        QCOMPARE(ingest.pose().gravity[2], 1.f);
    }

    void rowSpacingForEachRecordingRate_data() {
        QTest::addColumn<double>("frequency");
        for (double f : {400.0, 100.0, 25.0, 1.0})
            QTest::newRow(qPrintable(QString::number(f))) << f;
    }
    void rowSpacingForEachRecordingRate() {
        QFETCH(double, frequency);
        CountingRecorder recorder;
        recorder.frequency = frequency;
        SampleIngest ingest(series, *levels, mutex, &recorder);
        // Half a minute at 400 Hz with realistic jitter of the timestamps.
        std::uint64_t t = kStart;
        for (int i = 0; i <= 400 * 30; ++i) {
            ingest.ingest(record(t));
            t += kImuPeriod + ((i * 7919) % 41 - 20) * 1000;
        }
        // A row is written at the first sample past the minimum spacing, so the rate is the
        // IMU rate divided by a whole number of periods. Where the spacing falls exactly on a
        // period boundary (25 Hz: 15 periods) the timestamp jitter decides between two counts.
        const double periods = minimumRowSpacing(frequency, 400.0) / 0.0025;
        const double lowest = 400.0 / (std::floor(periods) + 1.0);
        const double highest = 400.0 / std::ceil(periods - 1e-9);
        const double perSecond = recorder.rows.size() / 30.0;
        QVERIFY2(perSecond >= lowest - 0.05 && perSecond <= highest + 0.05,
                 qPrintable(QString("%1 rows/s for %2 Hz").arg(perSecond).arg(frequency)));
        QVERIFY(perSecond >= frequency - 0.05);
    }
};

QTEST_APPLESS_MAIN(TestSampleIngest)
#include "tst_sampleingest.moc"
