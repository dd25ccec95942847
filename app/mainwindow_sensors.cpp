// Sensor choice and the live readout of the newest values.
#include <QTimer>

#include "SensorReadout.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::selectSensor(Sensor sensor) {
    changeSensor(sensor);
    const SensorLabels& labels = sensorInfo(sensor).labels;
    ui->label_sensor_type->setText(translated(labels.type));
    QString top = translated(labels.top);
    if (sensor == Sensor::MAGNETOMETER)
        top = top.arg(session.levels().magIsCalibrated ? tr("Calibrated") : tr("Not Calibrated"));
    ui->label_sensor_type_top->setText(top);
}

void MainWindow::on_pushButton_accel_clicked(bool checked) {
    if (checked) selectSensor(Sensor::ACCELEROMETER);
}

void MainWindow::on_pushButton_gyro_clicked(bool checked) {
    if (checked) selectSensor(Sensor::GYROSCOPE);
}

void MainWindow::on_pushButton_mag_clicked(bool checked) {
    if (checked) selectSensor(Sensor::MAGNETOMETER);
}

void MainWindow::on_pushButton_orient_clicked(bool checked) {
    if (checked) selectSensor(Sensor::ORIENTATION);
}

void MainWindow::on_pushButton_baro_clicked(bool checked) {
    if (checked) selectSensor(Sensor::BAROMETER);
}

void MainWindow::on_pushButton_temper_clicked(bool checked) {
    if (checked) selectSensor(Sensor::TEMPERATURE);
}

void MainWindow::updateDataDisplay() {
    showReplayPosition();
    if (hasNoCamera()) {
        if (!openingCamera) cameraDisconnected();
        return;
    }
    displayTimer->stop();
    // The timer fires often; the fields are rewritten at most once per period.
    const auto now = std::chrono::steady_clock::now();
    if (now - lastDisplayUpdate >= std::chrono::milliseconds(displayPeriodMs))
        showReadout(shown.value_or(Sensor::ACCELEROMETER));
    displayTimer->start();
}

void MainWindow::showReadout(Sensor sensor) {
    std::unique_lock<std::mutex> lock(session.seriesMutex());
    if (session.series().accX.isEmpty()) return;
    lastDisplayUpdate = std::chrono::steady_clock::now();
    const SensorReadout readout = readoutFor(sensor, session.series(), session.levels());
    lock.unlock();
    QLineEdit* fields[3] = {ui->lineEdit_value_0, ui->lineEdit_value_1, ui->lineEdit_value_2};
    for (int i = 0; i < 3; ++i)
        if (!readout.fields[i].isEmpty()) fields[i]->setText(readout.fields[i]);
    ui->label_sensor_rate->setText(readout.rate);
}
