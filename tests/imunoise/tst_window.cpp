// The "IMU Noise" window on a simulated still recording: the curves appear in the chart's axis
// colours, the table gives the noise terms with their units, the exports write their files, a
// failed export says why, cancelling stops the analysis, and the replay bar opens the window.
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>
#include <atomic>
#include <chrono>
#include <thread>

#include "AdevPlot.h"
#include "ImuNoiseWindow.h"
#include "MessageBoxWatcher.h"
#include "ReplayBar.h"
#include "SimulatedCameras.h"
#include "SimulatedRecording.h"
#include "WidgetTestMain.h"
#include "mainwindow.h"

namespace {

constexpr int kTimeoutMs = 60000;

// A short recording whose walks show within minutes, so that both lines can be fitted; the axes
// differ, so that no curve hides another.
bw::sim::DeviceConfig stillCamera() {
    bw::sim::DeviceConfig config;
    config.model = bw::MODEL::ORYX_D;
    config.motion = bw::sim::MotionProfile::Still;
    config.imuRateHz = 100.0;
    config.gyroNoise = {3e-5, 6e-5, 1.2e-4};
    config.gyroWalk = {3e-4, 3e-4, 3e-4};
    config.accNoise = {5e-4, 1e-3, 2e-3};
    config.accWalk = {4e-3, 4e-3, 4e-3};
    return config;
}

// Pixels of the widget within a few levels of `colour`.
int pixelsOf(QWidget* widget, const QColor& colour) {
    const QImage image = widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            count += std::abs(qRed(line[x]) - colour.red()) < 8 &&
                     std::abs(qGreen(line[x]) - colour.green()) < 8 &&
                     std::abs(qBlue(line[x]) - colour.blue()) < 8;
        }
    }
    return count;
}

bool waitForEnd(ImuNoiseWindow& window) {
    return QTest::qWaitFor(
        [&] {
            return !window.isAnalysing() &&
                   !window.findChild<QPushButton*>("cancelButton")->isVisible();
        },
        kTimeoutMs);
}

QString fileText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

class TestImuNoiseWindow : public QObject {
    Q_OBJECT

    QTemporaryDir dir;
    QString recording;

private slots:
    void initTestCase() {
        recording = dir.filePath("20261124_090000-ORYX_D-sn_31000017-ORYXSensorsData.csv");
        QString error;
        QVERIFY2(recordSimulatedCamera(stillCamera(), 300.0, everyGroupRecording(), recording,
                                       error) > 0,
                 qPrintable(error));
    }

    void showsCurvesAndNoiseTerms() {
        ImuNoiseWindow window(recording);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY2(waitForEnd(window), "the analysis ends");
        QCOMPARE(
            window.windowTitle(),
            QStringLiteral("IMU Noise - 20261124_090000-ORYX_D-sn_31000017-ORYXSensorsData.csv"));
        const auto* status = window.findChild<QLabel*>("status");
        QVERIFY2(QRegularExpression("^(29999|3000[01]) samples at 100.0 Hz over 5.0 min.$")
                     .match(status->text())
                     .hasMatch(),
                 qPrintable(status->text()));

        const QColor axisColours[] = {QColor(255, 87, 87), QColor(48, 214, 149),
                                      QColor(0, 190, 255)};
        for (const char* name : {"gyroscopePlot", "accelerometerPlot"}) {
            auto* plot = window.findChild<AdevPlot*>(name);
            QVERIFY(plot);
            for (const QColor& colour : axisColours)
                QVERIFY2(pixelsOf(plot, colour) > 200,
                         qPrintable(QStringLiteral("%1 shows %2").arg(name, colour.name())));
        }

        auto* table = window.findChild<QTableWidget*>("noiseTable");
        for (int row = 0; row < 6; ++row) {
            const bool gyro = row < 3;
            const QString n = table->item(row, 0)->text(), k = table->item(row, 1)->text();
            QVERIFY2(n.endsWith(gyro ? " rad/s/sqrt(Hz)" : " m/s^2/sqrt(Hz)"), qPrintable(n));
            QVERIFY2(k.endsWith(gyro ? " rad/s^2/sqrt(Hz)" : " m/s^3/sqrt(Hz)"), qPrintable(k));
            const double truth = (gyro ? 3e-5 : 5e-4) * (1 << (row % 3));
            QVERIFY2(std::abs(n.section(' ', 0, 0).toDouble() / truth - 1.0) < 0.1, qPrintable(n));
            QVERIFY(table->item(row, 0)->toolTip().contains("fitted for τ from"));
            QVERIFY(table->item(row, 2)->text().contains(gyro ? "rad/s (" : "m/s^2 ("));
        }
    }

    void exportsWriteTheirFiles() {
        ImuNoiseWindow window(recording);
        window.show();
        QVERIFY2(waitForEnd(window), "the analysis ends");
        QVERIFY(window.findChild<QPushButton*>("kalibrButton")->isEnabled());
        const QString yaml = dir.filePath("imu.yaml"), csv = dir.filePath("curves.csv");
        QVERIFY(window.exportKalibr(yaml));
        QVERIFY(window.exportCurves(csv));
        const QString kalibr = fileText(yaml);
        for (const char* key : {"accelerometer_noise_density: ", "accelerometer_random_walk: ",
                                "gyroscope_noise_density: ", "gyroscope_random_walk: ",
                                "rostopic: /imu0", "update_rate: 100.0"})
            QVERIFY2(kalibr.contains(QLatin1String(key)), key);
        const QStringList lines = fileText(csv).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.first(), QStringLiteral("tau_s,gyroX,gyroY,gyroZ,accX,accY,accZ"));
        QVERIFY(lines.size() > 30);
    }

    void aFailedExportSaysWhy() {
        ImuNoiseWindow window(recording);
        window.show();
        QVERIFY2(waitForEnd(window), "the analysis ends");
        MessageBoxWatcher boxes;
        QVERIFY(!window.exportCurves(dir.filePath("no such folder/curves.csv")));
        QCOMPARE(boxes.shown().size(), 1);
        QCOMPARE(boxes.shown().first().title, QStringLiteral("File error"));
        QVERIFY2(boxes.shown().first().text.contains("No such file or directory"),
                 qPrintable(boxes.shown().first().text));
    }

    void aRefusedFileSaysWhy() {
        const QString notes = dir.filePath("notes.csv");
        QFile file(notes);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("name,value\nalpha,1\n");
        file.close();
        ImuNoiseWindow window(notes);
        window.show();
        QVERIFY2(waitForEnd(window), "the analysis ends");
        const QString status = window.findChild<QLabel*>("status")->text();
        QVERIFY2(status.startsWith("This recording cannot be analysed: Line 1: The first line is "
                                   "not a sensor recording header"),
                 qPrintable(status));
        QVERIFY(!window.findChild<QPushButton*>("kalibrButton")->isEnabled());
        QVERIFY(!window.findChild<QPushButton*>("curvesButton")->isEnabled());
    }

    void cancellingStopsTheAnalysis() {
        // The analysis waits at its start (ten seconds at most) until the cancel was given.
        std::atomic<bool> go{false};
        ImuNoiseWindow window(
            recording, nullptr,
            [&go](const std::string& path, const imunoise::AnalysisOptions& options) {
                for (int i = 0; i < 1000 && !go.load(); ++i)
                    std::this_thread::sleep_for(std::chrono::milliseconds(10));
                return imunoise::analyseRecording(path, options);
            });
        window.show();
        QVERIFY(window.isAnalysing());
        window.findChild<QPushButton*>("cancelButton")->click();
        go.store(true);
        QVERIFY2(waitForEnd(window), "the analysis ends");
        QCOMPARE(window.findChild<QLabel*>("status")->text(), QStringLiteral("Cancelled."));
        QVERIFY(!window.findChild<QPushButton*>("kalibrButton")->isEnabled());
        // And it can be run again.
        window.findChild<QPushButton*>("againButton")->click();
        QVERIFY2(waitForEnd(window), "the second analysis ends");
        QVERIFY(window.findChild<QPushButton*>("kalibrButton")->isEnabled());
    }

    void theReplayBarOpensIt() {
        PacedVirtualTime time({});
        MainWindow w;
        w.openRecordings({recording});
        w.show();
        QTRY_VERIFY_WITH_TIMEOUT(w.isSampling() && !w.replayControls()->isHidden(), kTimeoutMs);
        w.replayControls()->findChild<QPushButton*>("imuNoiseButton")->click();
        QVERIFY(w.imuNoise());
        QVERIFY(w.imuNoise()->isWindow() && w.imuNoise()->isVisible());
        QVERIFY(!w.imuNoise()->isModal());
        QCOMPARE(w.imuNoise()->recordingPath(), QFileInfo(recording).absoluteFilePath());
        QVERIFY2(waitForEnd(*w.imuNoise()), "the analysis ends");
        // Asked again: the same window.
        ImuNoiseWindow* first = w.imuNoise();
        w.replayControls()->findChild<QPushButton*>("imuNoiseButton")->click();
        QCOMPARE(w.imuNoise(), first);
    }
};

WIDGET_TEST_MAIN(TestImuNoiseWindow)
#include "tst_window.moc"
