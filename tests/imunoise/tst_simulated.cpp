// The noise analysis against the simulator's known truth: still cameras recorded for an hour of
// virtual time by the viewer's CSV writer, analysed by the library and by oryx-imu-noise.
//
// The IMU runs at 50 Hz: the analysis takes its rate from the timestamps and nothing in it
// depends on the rate, while the simulation of an hour costs half as much as at 100 Hz.
//
// Tolerances. N is fitted where white noise dominates, mostly at the shortest cluster times:
// at τ = 0.1 s an hour holds 36 000 independent clusters, a standard error of 0.4 % per point,
// so 5 % is far outside chance. K is fitted where the walk dominates, which the chosen N/K
// ratios put from about 10 s on: 360 clusters there, 3.7 % per point, falling to a handful of
// clusters (tens of per cent) at the longest cluster times; neighbouring points share most of
// their data, so the fit is worth little more than its best points, about 5 to 7 %. 30 % is
// then more than four standard errors. Checked on twelve other seeds of the same camera
// (72 estimates of each): K's errors had an RMS of 7 % and a largest of 23 %, N's an RMS of
// 0.3 % and a largest of 0.8 %. The seeds here are fixed, so the test gives the same numbers
// on every run.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <fstream>

#include "NoiseAnalysis.h"
#include "NoiseExport.h"
#include "SimulatedRecording.h"

using namespace imunoise;

namespace {

constexpr double kHour = 3600.0;
constexpr double kRateHz = 50.0;  // an hour is then 180 000 rows

// Per reported axis x, y, z. Crossings √3 N/K between 2.6 s and 4.2 s; the walks stay small
// enough that the camera's own motion detector still calls it static after an hour.
constexpr double kGyroNoise[3] = {6e-5, 9e-5, 1.2e-4};
constexpr double kGyroWalk[3] = {3e-5, 4e-5, 5e-5};
constexpr double kAccNoise[3] = {1.2e-3, 1.6e-3, 2e-3};
constexpr double kAccWalk[3] = {6e-4, 8e-4, 1e-3};

bw::sim::DeviceConfig stillCamera(std::uint64_t seed) {
    bw::sim::DeviceConfig config;
    config.model = bw::MODEL::ORYX_D;
    config.motion = bw::sim::MotionProfile::Still;
    config.seed = seed;
    config.imuRateHz = kRateHz;
    for (int i = 0; i < 3; ++i) {
        config.gyroNoise[i] = kGyroNoise[i], config.gyroWalk[i] = kGyroWalk[i];
        config.accNoise[i] = kAccNoise[i], config.accWalk[i] = kAccWalk[i];
    }
    return config;
}

QString describe(ImuAxis axis, double found, double truth) {
    return QStringLiteral("%1: %2 for %3 (%4 %)")
        .arg(QString::fromLatin1(nameOf(axis).data(), int(nameOf(axis).size())))
        .arg(found, 0, 'e', 4)
        .arg(truth, 0, 'e', 4)
        .arg(100.0 * (found / truth - 1.0), 0, 'f', 2);
}

struct ToolRun {
    int exitCode = -1;
    QString out, err;
};

ToolRun runTool(const QStringList& arguments) {
    QProcess tool;
    tool.start(QStringLiteral(ORYX_IMU_NOISE_TOOL), arguments);
    ToolRun run;
    if (!tool.waitForFinished(120000)) {
        tool.kill();
        tool.waitForFinished(5000);
        run.err = QStringLiteral("oryx-imu-noise did not finish within 2 minutes");
        return run;
    }
    run.exitCode = tool.exitStatus() == QProcess::NormalExit ? tool.exitCode() : -1;
    run.out = QString::fromUtf8(tool.readAllStandardOutput());
    run.err = QString::fromUtf8(tool.readAllStandardError());
    return run;
}

// Copies the recording leaving out `drop` rows every `every` rows after the first `skip`.
QString withRowsLeftOut(const QString& from, const QString& to, int skip, int every, int drop) {
    std::ifstream in(from.toStdString());
    std::ofstream out(to.toStdString());
    std::string line;
    std::getline(in, line);
    out << line << '\n';
    for (long row = 0; std::getline(in, line); ++row) {
        const long phase = (row - skip) % every;
        if (row >= skip && phase < drop) continue;
        out << line << '\n';
    }
    return to;
}

}  // namespace

class TestSimulatedNoise : public QObject {
    Q_OBJECT

    QTemporaryDir dir;
    QString noisy, whiteOnly;
    long whiteRows = 0;
    NoiseReport noisyReport;

private slots:
    void initTestCase() {
        QVERIFY(dir.isValid());
        QElapsedTimer clock;
        clock.start();
        QString error;
        noisy =
            dir.filePath(QStringLiteral("20261124_120000-ORYX_D-sn_31000017-ORYXSensorsData.csv"));
        QVERIFY2(recordSimulatedCamera(stillCamera(3), kHour + 1.0, imuOnlyRecording(), noisy,
                                       error) > 0,
                 qPrintable(error));
        bw::sim::DeviceConfig white = stillCamera(4);
        white.gyroWalk = {0.0, 0.0, 0.0};
        white.accWalk = {0.0, 0.0, 0.0};
        whiteOnly = dir.filePath(QStringLiteral("white.csv"));
        whiteRows = recordSimulatedCamera(white, kHour / 2, imuOnlyRecording(), whiteOnly, error);
        QVERIFY2(whiteRows > 0, qPrintable(error));
        qInfo("an hour and a half recorded in %.1f s", double(clock.restart()) / 1000.0);
        noisyReport = analyseRecording(noisy.toStdString());
        qInfo("one hour analysed in %.2f s", double(clock.elapsed()) / 1000.0);
        QVERIFY2(noisyReport.analysed(), noisyReport.refusal.c_str());
    }

    void noiseDensitiesAndWalksComeBackOnEveryAxis() {
        const NoiseReport& report = noisyReport;
        QVERIFY(std::abs(report.rateHz / kRateHz - 1.0) < 1e-4);
        QVERIFY(report.durationS >= kHour - 1.0);
        QVERIFY2(report.warnings.empty(),
                 report.warnings.empty() ? "" : report.warnings.front().c_str());
        for (const ImuAxis axis : kAxes) {
            const int c = componentOf(axis);
            const bool gyro = sensorOf(axis) == Sensor::GYROSCOPE;
            const AxisNoise& noise = report[axis].noise;
            QVERIFY2(noise.white && noise.walk,
                     qPrintable(QString::fromLatin1(nameOf(axis).data())));
            const double n = gyro ? kGyroNoise[c] : kAccNoise[c];
            const double k = gyro ? kGyroWalk[c] : kAccWalk[c];
            qInfo("%s, fit error %.1f %%", qPrintable(describe(axis, noise.white->value, n)),
                  100.0 * noise.white->relativeError);
            qInfo("%s, fit error %.1f %%", qPrintable(describe(axis, noise.walk->value, k)),
                  100.0 * noise.walk->relativeError);
            QVERIFY2(std::abs(noise.white->value / n - 1.0) < 0.05,
                     qPrintable(describe(axis, noise.white->value, n)));
            QVERIFY2(std::abs(noise.walk->value / k - 1.0) < 0.30,
                     qPrintable(describe(axis, noise.walk->value, k)));
        }
    }

    void whiteNoiseAloneFallsWithSlopeMinusHalf() {
        const NoiseReport report = analyseRecording(whiteOnly.toStdString());
        QVERIFY2(report.analysed(), report.refusal.c_str());
        for (const ImuAxis axis : kAxes) {
            const std::vector<AdevPoint>& curve = report[axis].curve;
            // Least-squares slope of log σ over log τ through the whole curve.
            double sx = 0, sy = 0, sxx = 0, sxy = 0;
            for (const AdevPoint& p : curve) {
                const double x = std::log10(p.tau), y = std::log10(p.deviation);
                sx += x, sy += y, sxx += x * x, sxy += x * y;
            }
            const double n = double(curve.size());
            const double slope = (n * sxy - sx * sy) / (n * sxx - sx * sx);
            QVERIFY2(std::abs(slope + 0.5) < 0.02,
                     qPrintable(QStringLiteral("%1: slope %2")
                                    .arg(QString::fromLatin1(nameOf(axis).data()))
                                    .arg(slope)));
        }
    }

    void toolWritesItsFilesForARecorderFile() {
        const QString adev = dir.filePath(QStringLiteral("adev.csv"));
        const QString yaml = dir.filePath(QStringLiteral("imu.yaml"));
        const QString json = dir.filePath(QStringLiteral("noise.json"));
        const ToolRun run =
            runTool({noisy, QStringLiteral("--adev"), adev, QStringLiteral("--kalibr"), yaml,
                     QStringLiteral("--json"), json});
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        QVERIFY2(
            run.out.contains(QStringLiteral("gyroZ")) && run.out.contains(QStringLiteral("accX")),
            qPrintable(run.out));

        QFile curves(adev);
        QVERIFY(curves.open(QIODevice::ReadOnly));
        const QStringList lines =
            QString::fromUtf8(curves.readAll()).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.front(), QStringLiteral("tau_s,gyroX,gyroY,gyroZ,accX,accY,accZ"));
        QCOMPARE(lines.size() - 1, int(noisyReport[ImuAxis::GYRO_X].curve.size()));
        QVERIFY(std::abs(lines[1].split(',').front().toDouble() * noisyReport.rateHz - 1.0) < 1e-8);
        QCOMPARE(lines[1].split(',').size(), 7);

        QFile results(json);
        QVERIFY(results.open(QIODevice::ReadOnly));
        QJsonParseError parseError;
        const QJsonObject root = QJsonDocument::fromJson(results.readAll(), &parseError).object();
        QVERIFY2(parseError.error == QJsonParseError::NoError,
                 qPrintable(parseError.errorString()));
        QVERIFY(std::abs(root["rate_hz"].toDouble() / kRateHz - 1.0) < 1e-4);
        QVERIFY(root["duration_s"].toDouble() >= kHour - 1.0);
        for (const ImuAxis axis : kAxes) {
            const QJsonObject sensor =
                root[sensorOf(axis) == Sensor::GYROSCOPE ? "gyroscope" : "accelerometer"]
                    .toObject();
            const int c = componentOf(axis);
            const auto close = [](double a, double b) { return std::abs(a / b - 1.0) < 1e-5; };
            QVERIFY(close(sensor["noise_density"].toArray()[c].toDouble(),
                          noisyReport[axis].noise.white->value));
            QVERIFY(close(sensor["random_walk"].toArray()[c].toDouble(),
                          noisyReport[axis].noise.walk->value));
            QVERIFY(close(sensor["bias_instability"].toArray()[c].toDouble(),
                          noisyReport[axis].noise.instability->value));
        }

        QFile kalibr(yaml);
        QVERIFY(kalibr.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(kalibr.readAll());
        // Kalibr takes the largest axis of each sensor.
        const auto keyValue = [&](const char* key) {
            const QRegularExpression line(QStringLiteral("^%1: ([^ #\\n]+)").arg(key),
                                          QRegularExpression::MultilineOption);
            return line.match(text).captured(1);
        };
        const auto written = [&](const char* key, std::optional<SensorValue> largest) {
            return largest && std::abs(keyValue(key).toDouble() / largest->value - 1.0) < 1e-5;
        };
        QVERIFY(written("gyroscope_noise_density",
                        largestNoiseDensity(noisyReport, Sensor::GYROSCOPE)));
        QVERIFY(
            written("gyroscope_random_walk", largestRandomWalk(noisyReport, Sensor::GYROSCOPE)));
        QVERIFY(written("accelerometer_noise_density",
                        largestNoiseDensity(noisyReport, Sensor::ACCELEROMETER)));
        QVERIFY(written("accelerometer_random_walk",
                        largestRandomWalk(noisyReport, Sensor::ACCELEROMETER)));
        // Of the largest N, z has the largest truth on both sensors.
        QCOMPARE(largestNoiseDensity(noisyReport, Sensor::GYROSCOPE)->axis, ImuAxis::GYRO_Z);
        QCOMPARE(keyValue("rostopic"), QStringLiteral("/imu0"));
        QVERIFY(std::abs(keyValue("update_rate").toDouble() - noisyReport.rateHz) < 1e-3);
        QVERIFY2(text.contains(QStringLiteral("largest")), "a comment says which axis was taken");
    }

    void toolRefusesAFileThatIsNoRecording() {
        const QString path = dir.filePath(QStringLiteral("notes.csv"));
        std::ofstream(path.toStdString()) << "name,value\nalpha,1\n";
        const ToolRun run = runTool({path});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.err.contains(QStringLiteral("not a sensor recording header")),
                 qPrintable(run.err));
        QCOMPARE(run.err.trimmed().count('\n'), 0);  // one line
    }

    void toolRefusesTooManyMissingSamples() {
        // 4 rows of every 1000 left out: 0.4 % missing, in gaps of 5 periods.
        const QString gappy =
            withRowsLeftOut(whiteOnly, dir.filePath(QStringLiteral("gappy.csv")), 5000, 1000, 4);
        const ToolRun run = runTool({gappy});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.err.contains(QStringLiteral("More than 0.1 %")) &&
                     run.err.contains(QStringLiteral("line 5002")),
                 qPrintable(run.err));
        QCOMPARE(run.err.trimmed().count('\n'), 0);
    }

    void fewMissingSamplesAreReportedNotRefused() {
        // Two rows of every 4000: 0.05 % missing, in gaps of three periods.
        const QString gappy =
            withRowsLeftOut(whiteOnly, dir.filePath(QStringLiteral("few.csv")), 100, 4000, 2);
        const NoiseReport report = analyseRecording(gappy.toStdString());
        QVERIFY2(report.analysed(), report.refusal.c_str());
        const auto gaps = std::size_t((whiteRows - 100 - 1) / 4000 + 1);
        QCOMPARE(report.gaps.count, gaps);
        QCOMPARE(report.gaps.missingSamples, 2 * gaps);
        QCOMPARE(report.gaps.firstLine, std::size_t(102));
        QVERIFY(std::abs(report.gaps.largestS - 3.0 / kRateHz) < 0.1 / kRateHz);
        QVERIFY(std::abs(report.rateHz / kRateHz - 1.0) < 1e-4);
        QVERIFY(!report.warnings.empty() && QString::fromStdString(report.warnings.front())
                                                .contains(QStringLiteral("%1 gaps").arg(gaps)));
    }

    void aMovingCameraIsFlagged() {
        bw::sim::DeviceConfig handheld = stillCamera(5);
        handheld.motion = bw::sim::MotionProfile::Gentle;
        const QString path = dir.filePath(QStringLiteral("handheld.csv"));
        QString error;
        QVERIFY2(recordSimulatedCamera(handheld, 200.0, imuOnlyRecording(), path, error) > 0,
                 qPrintable(error));
        const NoiseReport report = analyseRecording(path.toStdString());
        QVERIFY2(report.analysed(), report.refusal.c_str());
        bool flagged = false;
        for (const std::string& warning : report.warnings)
            flagged = flagged || warning.find("not still") != std::string::npos;
        QVERIFY2(flagged, "a moving camera gets a warning");
    }

    void aShortRecordingIsRefused() {
        const QString path = dir.filePath(QStringLiteral("short.csv"));
        QString error;
        QVERIFY2(recordSimulatedCamera(stillCamera(6), 60.0, imuOnlyRecording(), path, error) > 0,
                 qPrintable(error));
        const NoiseReport report = analyseRecording(path.toStdString());
        QVERIFY(!report.analysed());
        QVERIFY2(QString::fromStdString(report.refusal).contains(QStringLiteral("at least 100 s")),
                 report.refusal.c_str());
    }
};

QTEST_GUILESS_MAIN(TestSimulatedNoise)
#include "tst_simulated.moc"
