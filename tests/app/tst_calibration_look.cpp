// The magnetometer calibration dialog as a user sees it, opened from the main window on a
// simulated camera whose stored calibration the device rates GOOD, OK or NOT GOOD: the status
// label in the quality colour with black text, the two compass faces, and the needles pointing
// to the headings the labels above them show, read from pictures of the whole dialog.
#include <QLabel>
#include <QPushButton>
#include <QtTest>
#include <bw/ORYXmcu.hpp>
#include <functional>
#include <memory>

#include "CompassNeedle.h"
#include "ComposedWindow.h"
#include "MessageBoxWatcher.h"
#include "SimulatedCameras.h"
#include "SimulatedMcu.h"
#include "WidgetTestMain.h"
#include "magcalibdlg.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

constexpr int kTimeoutMs = 10000;
// Only a guard against a dialog that never shows the awaited status.
constexpr int kDialogGuardMs = 30000;

// Stores the calibration that undoes the camera's distortion, with the scale of one axis off by
// `scaleError` (0.05 is 5 %): the further off, the worse the device rates it.
void storeCalibration(const bw::sim::DeviceConfig& camera, float scaleError) {
    auto mcu = simmcu::openMcu(camera.serial);
    QVERIFY(mcu);
    const auto& soft = camera.softIronScale;
    bw::_mag_calib_data c = simmcu::magCalibration(
        {(1.f + scaleError) / soft.x, 1.f / soft.y, 1.f / soft.z}, camera.hardIronOffset);
    QCOMPARE(mcu->writeMagCalibInEEprom(c), 0);
}

// What the device reports about its stored calibration, with a moment of samples to go on.
bw::_imu_pose_data deviceRating(unsigned serial) {
    auto mcu = simmcu::openMcu(serial);
    if (!mcu || mcu->startCapture(0.f) != 0) return {};
    bw::sim::Clock::advanceBy(50'000'000ull);
    return mcu->getIMUPose(6);
}

// The face of a compass: the colour that covers most of the disc inside its scale, around the
// needle.
QColor faceColour(const QImage& compass) {
    const int side = std::min(compass.width(), compass.height());
    const QRect inner(compass.width() / 2 - side / 5, compass.height() / 2 - side / 5,
                      2 * (side / 5), 2 * (side / 5));
    return composed::dominantColour(compass.copy(inner));
}

// The heading a label such as "Calibrated\n-100.00°" shows; NaN when it shows none.
double headingShownBy(const QLabel* label) {
    QString number = label->text().section('\n', 1).trimmed();
    number.chop(1);  // the degree sign
    bool ok = false;
    const double heading = number.toDouble(&ok);
    return ok ? heading : std::nan("");
}

}  // namespace

class TestCalibrationLook : public QObject {
    Q_OBJECT

    // Opens the calibration dialog the way a user does and, once its status label reads
    // `status`, hands pictures of it to `look` before leaving it. The window lets the camera go
    // while the dialog runs (the dialog talks to the micro-controller itself) and takes it back
    // when the dialog closes.
    static void inDialog(
        const QString& status,
        const std::function<void(MagCalibDlg&, const QVector<composed::Shot>&)>& look) {
        MessageBoxWatcher boxes;
        MainWindow w;
        w.show();
        QTRY_VERIFY_WITH_TIMEOUT(w.input() != nullptr && w.isSampling(), kTimeoutMs);
        w.form()->pushButton_mag->click();

        bool looked = false, cameraReleased = false;
        QTimer driver;
        connect(&driver, &QTimer::timeout, [&] {
            auto* dialog = w.findChild<MagCalibDlg*>();
            if (dialog == nullptr || !dialog->isVisible()) return;
            auto* label = dialog->findChild<QLabel*>("label_mag_calib_quality");
            if (label->text() != status) return;
            driver.stop();
            cameraReleased = w.input() == nullptr && !w.isSampling();
            look(*dialog, composed::grabBoth(dialog));
            looked = true;
            dialog->findChild<QPushButton*>("pushButton_exit")->click();
        });
        driver.start(20);
        QTimer::singleShot(kDialogGuardMs, &driver, [&] {
            // The status never came: leave the dialog so that the test can report it.
            if (auto* dialog = w.findChild<MagCalibDlg*>())
                dialog->findChild<QPushButton*>("pushButton_exit")->click();
        });
        w.form()->pushButton_calib_mag->click();  // runs the dialog until it is left
        QVERIFY2(looked, qPrintable("the dialog never showed " + status));
        QVERIFY(boxes.shown().isEmpty());
        QVERIFY(cameraReleased);
        QTRY_VERIFY_WITH_TIMEOUT(w.input() != nullptr && w.isSampling(), kTimeoutMs);
        QVERIFY(w.findChild<MagCalibDlg*>() == nullptr);
    }

private slots:
    void statusLabelTakesTheQualityColour_data() {
        QTest::addColumn<float>("scaleError");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        QTest::newRow("GOOD") << 0.f << 0 << "GOOD";
        QTest::newRow("OK") << 0.035f << 1 << "OK";
        QTest::newRow("NOT GOOD") << 0.1f << 2 << "NOT GOOD";
    }
    void statusLabelTakesTheQualityColour() {
        QFETCH(float, scaleError);
        QFETCH(int, status);
        QFETCH(QString, text);
        const bw::sim::DeviceConfig camera = simulatedCamera(bw::MODEL::ORYX_D);
        PacedVirtualTime time({camera});
        storeCalibration(camera, scaleError);
        const bw::_imu_pose_data rating = deviceRating(camera.serial);
        QCOMPARE(int(rating.mag_calib_status), status);
        const QColor quality =
            QColor::fromHsvF(rating.mag_calib_quality * 0.33, 0.75, 0.8, 1.0).toRgb();

        inDialog(text, [&](MagCalibDlg& dialog, const QVector<composed::Shot>& shots) {
            const QWidget* label = composed::named(&dialog, "label_mag_calib_quality");
            for (const composed::Shot& shot : shots) {
                const QImage image = composed::region(shot.image, &dialog, label);
                const QColor background = composed::dominantColour(image);
                const QColor ink = composed::inkColour(image, background);
                const QString seen =
                    QString("%1: %2 text on %3, quality colour %4")
                        .arg(shot.how, composed::describe(ink), composed::describe(background),
                             composed::describe(quality));
                QVERIFY2(composed::distance(background, quality) <= 3, qPrintable(seen));
                QVERIFY2(composed::distance(ink, Qt::black) <= 30, qPrintable(seen));
            }
        });
    }

    void compassFacesAreDarkBlueAndDarkRed() {
        const bw::sim::DeviceConfig camera = simulatedCamera(bw::MODEL::ORYX_D);
        PacedVirtualTime time({camera});
        inDialog("MAG. NOT CALIBRATED", [](MagCalibDlg& dialog,
                                           const QVector<composed::Shot>& shots) {
            for (const composed::Shot& shot : shots) {
                const QColor raw = faceColour(composed::region(
                    shot.image, &dialog, composed::named(&dialog, "widget_raw_compass")));
                const QColor calibrated = faceColour(composed::region(
                    shot.image, &dialog, composed::named(&dialog, "widget_calib_compass")));
                QVERIFY2(composed::distance(raw, Qt::darkRed) <= 6,
                         qPrintable(shot.how + ": raw face " + composed::describe(raw)));
                QVERIFY2(
                    composed::distance(calibrated, Qt::darkBlue) <= 6,
                    qPrintable(shot.how + ": calibrated face " + composed::describe(calibrated)));
            }
        });
    }

    // A still camera facing a heading, with a calibration stored that undoes its distortion:
    // the calibrated label shows that heading, the uncalibrated one what the distorted field
    // makes of it, and each needle's red half points where its label says, negative headings
    // included.
    void needlesPointToTheHeadings_data() {
        QTest::addColumn<double>("heading");
        for (double heading : {60.0, 150.0, -30.0, -100.0, -170.0})
            QTest::addRow("%g", heading) << heading;
    }
    void needlesPointToTheHeadings() {
        QFETCH(double, heading);
        bw::sim::DeviceConfig camera = simulatedCamera(bw::MODEL::ORYX_D);
        camera.motion = bw::sim::MotionProfile::Still;
        camera.headingDeg = heading;
        PacedVirtualTime time({camera});
        storeCalibration(camera, 0.f);
        inDialog("GOOD", [&](MagCalibDlg& dialog, const QVector<composed::Shot>& shots) {
            const double calibrated =
                headingShownBy(dialog.findChild<QLabel*>("label_heading_calib"));
            QVERIFY2(std::abs(needle::headingDifference(calibrated, heading)) < 3.0,
                     qPrintable(QString("the calibrated label shows %1").arg(calibrated)));
            const struct {
                const char* compass;
                const char* label;
            } pairs[] = {{"widget_raw_compass", "label_heading_uncalib"},
                         {"widget_calib_compass", "label_heading_calib"}};
            for (const composed::Shot& shot : shots)
                for (const auto& pair : pairs) {
                    const double labelled = headingShownBy(dialog.findChild<QLabel*>(pair.label));
                    const std::optional<double> pointed = needle::headingOf(composed::region(
                        shot.image, &dialog, composed::named(&dialog, pair.compass)));
                    const QString seen = QString("%1, %2: label %3, needle %4")
                                             .arg(shot.how, pair.compass)
                                             .arg(labelled)
                                             .arg(pointed ? QString::number(*pointed) : "none");
                    QVERIFY2(pointed, qPrintable(seen));
                    QVERIFY2(std::abs(needle::headingDifference(*pointed, labelled)) < 3.0,
                             qPrintable(seen));
                }
        });
    }
};

WIDGET_TEST_MAIN(TestCalibrationLook)
#include "tst_calibration_look.moc"
