// Runs a whole magnetometer calibration in the viewer as a user would: selects the
// magnetometer, opens the calibration dialog, starts, lets the camera tumble, stops, stores, and
// saves a picture of the dialog once the camera reports the new calibration. Run it under
// xvfb-run with ORYX_SIM describing a tumbling camera (tools/take-screenshots.sh does).
//
//   oryx_calibration_run <output.png> [collect-seconds]
#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <cstdio>

#include "magcalibdlg.h"
#include "mainwindow.h"
#include "resources.h"
#include "ui_mainwindow.h"

namespace {

// Answers any open message box with its first button; true if one was answered.
bool answerMessageBox() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        if (box == nullptr || !box->isVisible() || box->buttons().isEmpty()) continue;
        for (QAbstractButton* button : box->buttons())
            if (button->text() == QLatin1String("Ok")) {
                button->click();
                return true;
            }
        box->buttons().first()->click();
        return true;
    }
    return false;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <output.png> [collect-seconds]\n", argv[0]);
        return 2;
    }
    QApplication app(argc, argv);
    initOryxResources();
    const QString output = QString::fromLocal8Bit(argv[1]);
    const int collectMs = (argc > 2 ? QString::fromLocal8Bit(argv[2]).toInt() : 40) * 1000;

    MainWindow window;
    window.resize(1400, 900);
    window.show();

    enum class Step { OpenDialog, Start, Collect, Stop, Store, Stored, Done };
    Step step = Step::OpenDialog;
    int result = 1;
    QElapsedTimer collecting;
    QTimer driver;
    QObject::connect(&driver, &QTimer::timeout, [&] {
        if (answerMessageBox()) return;
        auto* dialog = window.findChild<MagCalibDlg*>();
        // Clicks run after this tick: a click may open a modal box, and this timer must keep
        // ticking inside that box's event loop to answer it.
        auto click = [dialog](const char* name) {
            QPushButton* button = dialog->findChild<QPushButton*>(name);
            QTimer::singleShot(0, button, &QPushButton::click);
        };
        switch (step) {
            case Step::OpenDialog:
                if (window.input() == nullptr || !window.isSampling()) return;
                window.form()->pushButton_mag->click();
                step = Step::Start;
                QTimer::singleShot(0, [&window] { window.form()->pushButton_calib_mag->click(); });
                return;
            case Step::Start:
                if (dialog == nullptr || !dialog->isVisible()) return;
                click("pushButton_start");
                collecting.start();
                step = Step::Collect;
                return;
            case Step::Collect:
                if (collecting.elapsed() > collectMs) step = Step::Stop;
                return;
            case Step::Stop:
                click("pushButton_start");
                step = Step::Store;
                return;
            case Step::Store:
                click("pushButton_save_calib");
                step = Step::Stored;
                return;
            case Step::Stored:
                if (dialog->findChild<QLabel*>("label_mag_calib_quality")->text() == "---") return;
                QTimer::singleShot(1500, [&, dialog] {
                    result = dialog->grab().save(output) ? 0 : 1;
                    std::printf(
                        "status: %s\n",
                        qPrintable(dialog->findChild<QLabel*>("label_mag_calib_quality")->text()));
                    QTimer::singleShot(0, dialog->findChild<QPushButton*>("pushButton_exit"),
                                       &QPushButton::click);
                    QTimer::singleShot(2000, [&] {
                        window.close();
                        app.quit();
                    });
                });
                step = Step::Done;
                return;
            case Step::Done:
                return;
        }
    });
    driver.start(100);
    app.exec();
    return result;
}
