// Sensor choice and the live readout of the newest values.
#include <QTimer>
#include <chrono>

#include "SensorReadout.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

void MainWindow::selectSensor(const QString& name, const QString& typeText,
                              const QString& topText) {
    changeSensor(name);
    ui->label_sensor_type->setText(typeText);
    ui->label_sensor_type_top->setText(topText);
}

void MainWindow::on_pushButton_accel_clicked(bool checked) {
    if (checked)
        selectSensor(QStringLiteral("Accelerometer"), tr("Accelerometer @ "), tr("Accelerometer"));
}

void MainWindow::on_pushButton_gyro_clicked(bool checked) {
    if (checked) selectSensor(QStringLiteral("Gyroscope"), tr("Gyroscope @ "), tr("Gyroscope"));
}

void MainWindow::on_pushButton_mag_clicked(bool checked) {
    if (checked)
        selectSensor(QStringLiteral("Magnetometer"), tr("Magnetometer @ "),
                     tr("Magnetometer [%1]")
                         .arg(levels.magIsCalibrated ? tr("Calibrated") : tr("Not Calibrated")));
}

void MainWindow::on_pushButton_orient_clicked(bool checked) {
    if (checked)
        selectSensor(QStringLiteral("Orientation"), tr("Orientation @ "), tr("Orientation"));
}

void MainWindow::on_pushButton_baro_clicked(bool checked) {
    if (checked) selectSensor(QStringLiteral("Barometer"), tr("Barometer @ "), tr("Barometer"));
}

void MainWindow::on_pushButton_temper_clicked(bool checked) {
    if (checked)
        selectSensor(QStringLiteral("Camera Temperature"), tr("Temperature @ "), tr("Temperature"));
}

void MainWindow::updateDataDisplay() {
    if (noCamera) {
        if (!openingCamera) cameraDisconnected();
        return;
    }
    displayTimer->stop();
    using Clock = std::chrono::system_clock;
    static Clock::time_point lastDisplayUpdateTime = Clock::now();
    const auto now = Clock::now();
    const auto elapsedMs =
        std::chrono::duration_cast<std::chrono::milliseconds>(now - lastDisplayUpdateTime).count();
    std::unique_lock<std::mutex> lock(dataMutex);
    if (displayPeriodMs <= elapsedMs && !series.accX.isEmpty()) {
        lastDisplayUpdateTime = now;
        const SensorReadout readout = readoutFor(currentSensorName, series, levels);
        lock.unlock();
        QLineEdit* fields[3] = {ui->lineEdit_value_0, ui->lineEdit_value_1, ui->lineEdit_value_2};
        for (int i = 0; i < 3; ++i)
            if (!readout.fields[i].isEmpty()) fields[i]->setText(readout.fields[i]);
        ui->label_sensor_rate->setText(readout.rate);
    }
    displayTimer->start();
}
