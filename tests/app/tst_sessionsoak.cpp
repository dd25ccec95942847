// An hour of a 400 Hz camera through the window's camera session, on a virtual clock that runs
// as fast as the session reads it: the series stay within their budget once the first minute
// has passed, and at the end of the hour the chart's longest window, the readout and the
// recorder's rows still describe the newest samples.
//
// The simulated camera computes every sample, which takes most of the time: about 8 s for the
// hour in a Release build, well over a minute in a Debug one. ORYX_SOAK_SECONDS shortens the
// run for the sanitizer builds, which look for races and leaks in the same code paths.
#include <QElapsedTimer>
#include <QThread>
#include <QtTest>
#include <cmath>
#include <mutex>

#include "ChartSamples.h"
#include "ChartSpan.h"
#include "LiveCameraSession.h"
#include "SensorReadout.h"
#include "SimulatedCameras.h"

namespace {

constexpr double kImuPeriod = 1.0 / 400.0;
// Sanitizer builds sample several times slower.
constexpr int kWallTimeoutMs = 600000;

// Asked for every row, as a recording at the full rate would be; keeps the camera's newest record
// and checks that the row it is handed is the row of that record.
class NewestRecord : public RowRecorder {
public:
    explicit NewestRecord(const SensorSeries& series_) : series(series_) {}

    bool isRecording() const override { return true; }
    double rowsPerSecond() const override { return 400.0; }
    void saveRow(RowNumber row, const bw::SensorsData& latest) override {
        newest = latest;
        ++rows;
        const double stamp = static_cast<double>(latest.imu.timestamp) / 1e9;
        if (row < series.imuTime.firstRow() || series.imuTime.at(row) != stamp ||
            series.accX.at(row) != latest.imu.linear_acceleration.x)
            ++mismatches;
    }

    // Read once the sampling thread has ended.
    bw::SensorsData newest;
    std::int64_t rows = 0;
    std::int64_t mismatches = 0;

private:
    const SensorSeries& series;
};

double soakSeconds() {
    bool ok = false;
    const double seconds = qEnvironmentVariable("ORYX_SOAK_SECONDS").toDouble(&ok);
    return ok && seconds >= 120.0 ? seconds : 3600.0;
}

// Seconds of camera time in the series; the caller holds the lock.
double sampledSeconds(const SensorSeries& series, std::uint64_t startNs) {
    return series.imuTime.isEmpty() ? 0.0
                                    : series.imuTime.last() - static_cast<double>(startNs) / 1e9;
}

}  // namespace

class TestSessionSoak : public QObject {
    Q_OBJECT

private slots:
    void anHourAtFourHundredHertz() {
        const double soak = soakSeconds();
        bw::sim::VirtualTimeScope virtualTime;
        const bw::sim::DeviceConfig camera = simulatedCamera(bw::MODEL::ORYX_D);
        bw::sim::Bus::instance().load({camera});
        std::mutex cameraLayer;
        LiveCameraSession session(cameraLayer);
        NewestRecord recorder(session.series());
        session.setRecorder(&recorder);
        QCOMPARE(session.open({0, camera.serial, static_cast<std::uint32_t>(camera.model), {}}),
                 int(bw::SUCCESS));
        // The clock moves whenever the sampling thread waits for the next sample, and stops at
        // the end of the hour: nothing is skipped, nothing waits for the wall clock.
        const std::uint64_t startNs = bw::sim::Clock::nowNs();
        bw::sim::Clock::setAutoAdvanceLimit(startNs + static_cast<std::uint64_t>(soak * 1e9));
        session.start();

        std::size_t largest = 0;
        double sampled = 0.0;
        QElapsedTimer wall;
        wall.start();
        while (sampled < soak - 2 * kImuPeriod && wall.elapsed() < kWallTimeoutMs) {
            QThread::msleep(10);
            std::lock_guard<std::mutex> lock(session.seriesMutex());
            sampled = sampledSeconds(session.series(), startNs);
            if (sampled > 60.0) largest = std::max(largest, session.series().bytes());
        }
        session.close();
        QVERIFY2(
            sampled >= soak - 2 * kImuPeriod,
            qPrintable(QString("%1 s sampled in %2 s").arg(sampled).arg(wall.elapsed() / 1e3)));
        const SensorSeries& series = session.series();

        // Memory: within the budget, and as small as the rows the views need.
        QVERIFY2(largest > 0 && largest <= SensorSeries::kBudgetBytes,
                 qPrintable(QString("%1 bytes").arg(largest)));
        QCOMPARE(series.endRow().value(), recorder.rows);
        QVERIFY2(static_cast<double>(series.endRow().value()) >= 400 * (soak - 1.0),
                 qPrintable(QString::number(recorder.rows)));

        // The recorder was handed the row of each record, also once old rows had left.
        QCOMPARE(recorder.mismatches, std::int64_t{0});

        // The chart's longest window: 60 s with its margin, every sample of them.
        const SampleColumn& time = series.imuTime;
        const RowNumber start = chart::imuStartRow(time.firstRow(), time.endRow(), 60, 400);
        const ChartSamples chart(time.slice(start), series.accX.slice(start));
        QCOMPARE(int(chart.size()), 31200);
        const double newest = chart.sample(chart.size() - 1).x();
        QCOMPARE(newest, static_cast<double>(recorder.newest.imu.timestamp) / 1e9);
        QVERIFY(chart.sample(0).x() <= newest - 60.0);
        for (size_t i = 1; i < chart.size(); ++i) {
            const double interval = chart.sample(i).x() - chart.sample(i - 1).x();
            QVERIFY2(interval > 0.0 && interval < 1.5 * kImuPeriod,
                     qPrintable(QString("a gap of %1 s at point %2").arg(interval).arg(i)));
        }

        // The readout: the newest sample the camera sent.
        SensorLevels levels;
        const SensorReadout readout = readoutFor(Sensor::ACCELEROMETER, series, levels);
        QCOMPARE(readout.fields[0],
                 QString("X %1 m/s²").arg(recorder.newest.imu.linear_acceleration.x, 5, 'f', 3));
        QCOMPARE(readout.fields[2],
                 QString("Z %1 m/s²").arg(recorder.newest.imu.linear_acceleration.z, 5, 'f', 3));
    }
};

QTEST_APPLESS_MAIN(TestSessionSoak)
#include "tst_sessionsoak.moc"
