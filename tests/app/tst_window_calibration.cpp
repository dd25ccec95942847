// The hand-over to the magnetometer calibration dialog: the window lets the camera go while the
// dialog runs and opens it again when the dialog closes.
#include <QPushButton>
#include <QtTest>

#include "MessageBoxWatcher.h"
#include "SimulatedCameras.h"
#include "WidgetTestMain.h"
#include "magcalibdlg.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

class TestWindowCalibration : public QObject {
    Q_OBJECT

private slots:
    void theDialogGetsTheCameraAndGivesItBack() {
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        MessageBoxWatcher boxes;
        MainWindow w;
        w.show();
        QTRY_VERIFY_WITH_TIMEOUT(w.input() != nullptr && w.isSampling(), 10000);
        w.form()->pushButton_mag->click();
        QVERIFY(!w.form()->pushButton_calib_mag->isHidden());

        bool dialogSeen = false, cameraReleased = false, dialogHadDevice = false;
        QTimer closer;
        connect(&closer, &QTimer::timeout, [&] {
            auto* dialog = w.findChild<MagCalibDlg*>();
            if (dialog == nullptr || !dialog->isVisible()) return;
            dialogSeen = true;
            cameraReleased = w.input() == nullptr && !w.isSampling();
            auto* quality = dialog->findChild<QLabel*>("label_mag_calib_quality");
            // The dialog talks to the micro-controller itself: it shows the device's status.
            if (quality == nullptr || quality->text() == "---") return;
            dialogHadDevice = true;
            dialog->findChild<QPushButton*>("pushButton_exit")->click();
        });
        closer.start(20);
        w.form()->pushButton_calib_mag->click();  // runs the dialog until it is closed
        closer.stop();

        QVERIFY(dialogSeen);
        QVERIFY(cameraReleased);
        QVERIFY(dialogHadDevice);
        QVERIFY(boxes.shown().isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(w.input() != nullptr && w.isSampling(), 10000);
        QVERIFY(w.findChild<MagCalibDlg*>() == nullptr);
    }
};

WIDGET_TEST_MAIN(TestWindowCalibration)
#include "tst_window_calibration.moc"
