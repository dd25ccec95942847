// Camera list: polling for cameras, listing them, and opening the chosen one.
#include <QFileInfo>
#include <QTimer>
#include <bw/types.hpp>

#include "InputThreadModul.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::listCamera(const LiveCameraSession::Camera& camera, const QString& modelName) {
    listedCameras.append(camera);
    if (!camera.recording.isEmpty())
        ui->comboBox_camera_list->addItem(
            tr("Recording - %1").arg(QFileInfo(camera.recording).fileName()));
    else
        ui->comboBox_camera_list->addItem(
            QStringLiteral("%1 - %3").arg(modelName).arg(camera.serial));
}

int MainWindow::updateDeviceList(bool keepCurrent) {
    listedCameras.clear();
    detecting = true;
    ui->comboBox_camera_list->clear();
    if (keepCurrent) listCamera(selected, selectedModelName);
    // The list shown is the previous poll's, so the window never waits for the camera layer.
    const std::vector<bw::DeviceProperties> devices = detectionThread.deviceList();
    detectionThread.start(QThread::InheritPriority);
    for (const QString& path : recordings) listRecording(path);
    for (const bw::DeviceProperties& device : devices) {
        // A camera that replays a recording names its file as its device path.
        const QString path = QString::fromStdString(device.path);
        if (QFileInfo(path).isFile()) {
            listRecording(path);
            continue;
        }
        if (!modelInfo(device.camera_model).isListed() || device.serial_number == 0 ||
            device.camera_state != bw::CAMERA_STATE::AVAILABLE)
            continue;
        listCamera({static_cast<std::uint32_t>(device.id), device.serial_number,
                    static_cast<std::uint32_t>(device.camera_model), QString()},
                   QString::fromLatin1(bw::toString(device.camera_model)));
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
    const InputThreadModul* module = session.input();
    const bool cameraOpen =
        module != nullptr && (module->isStereoOpen() || module->isSingleSensorOpen());
    if (cameraOpen)
        updateDeviceList(true);
    else
        cameraDisconnected();
}
