// Magnetometer calibration: the dialog takes the camera's sensor micro-controller over, so the
// window lets the camera go for the dialog's lifetime and opens it again afterwards.
#include "magcalibdlg.h"
#include "mainwindow.h"

void MainWindow::on_pushButton_calib_mag_clicked() {
    const std::uint32_t serial = selected.serial;
    reset();
    displayDefaultValues();
    initCharts();
    auto* dialog = new MagCalibDlg(static_cast<int>(serial), this);
    dialog->exec();
    createLiveInput();
    delete dialog;
}
