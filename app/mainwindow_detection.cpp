// Camera list: polling for cameras, listing them, and opening the chosen one.
#include <QTimer>
#include <bw/types.hpp>

#include "InputThreadModul.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

QString itemText(const QString& modelName, std::uint32_t serial) {
    return QStringLiteral("%1 - %3").arg(modelName).arg(serial);
}

}  // namespace

int MainWindow::updateDeviceList(bool keepCurrent) {
    deviceIds.clear();
    deviceSerials.clear();
    deviceModels.clear();
    detecting = true;
    ui->comboBox_camera_list->clear();
    if (keepCurrent) {
        deviceIds.append(selectedId);
        deviceSerials.append(selectedSerial);
        deviceModels.append(selectedModel);
        ui->comboBox_camera_list->addItem(itemText(selectedModelName, selectedSerial));
    }
    // The list shown is the previous poll's, so the window never waits for the camera layer.
    const std::vector<bw::DeviceProperties> devices = detectionThread.deviceList();
    detectionThread.start(QThread::InheritPriority);
    int listed = 0;
    for (const bw::DeviceProperties& device : devices) {
        if (device.camera_model == bw::MODEL::ORYX || device.serial_number == 0 ||
            device.camera_state != bw::CAMERA_STATE::AVAILABLE)
            continue;
        deviceIds.append(static_cast<std::uint32_t>(device.id));
        deviceSerials.append(device.serial_number);
        deviceModels.append(static_cast<std::uint32_t>(device.camera_model));
        ++listed;
        ui->comboBox_camera_list->addItem(
            itemText(QString::fromLatin1(bw::toString(device.camera_model)), device.serial_number));
    }
    detecting = false;
    if (ui->comboBox_camera_list->count() > 0) ui->comboBox_camera_list->setCurrentIndex(0);
    return ui->comboBox_camera_list->count();
}

int MainWindow::detectMultipleDevice() {
    const int found = updateDeviceList(false);
    detecting = true;
    if (found > 0) {
        ui->comboBox_camera_list->setCurrentIndex(0);
        ui->comboBox_camera_list->setEnabled(true);
        selectedModelName =
            ui->comboBox_camera_list->currentText().section(QLatin1String(" - "), 0, 0);
        discardTimer(detectTimer);
        createLiveInput();
        detecting = false;
        return 1;
    }
    ui->comboBox_camera_list->addItem(tr("No cameras"));
    ui->comboBox_camera_list->setEnabled(false);
    detecting = false;
    return 0;
}

void MainWindow::on_comboBox_camera_list_currentIndexChanged(int) {
    if (detecting) return;
    selectedModelName = ui->comboBox_camera_list->currentText().section(QLatin1String(" - "), 0, 0);
    reset();
    createLiveInput();
}

void MainWindow::on_pushButton_refresh_list_clicked() {
    bool cameraOpen = false;
    withInput([&cameraOpen](InputThreadModul& module) {
        cameraOpen = module.isStereoOpen() || module.singleCamera().isOpened();
    });
    if (cameraOpen)
        updateDeviceList(true);
    else
        cameraDisconnected();
}
