// Recording to CSV: the record button, the rows the sampling thread writes, the free disk space.
#include <QDateTime>
#include <bw/types.hpp>

#include "InputThreadModul.h"
#include "csvformat.h"
#include "fileerrorbox.h"
#include "freespace.h"
#include "mainwindow.h"
#include "recoptiondlg.h"
#include "ui_mainwindow.h"

void MainWindow::on_pushButton_rec_option_clicked() {
    RecOptionDlg dialog;
    if (dialog.exec() == QDialog::Accepted) {
        recOptions = dialog.options();
        printDiskFreeSpace();
    }
}

void MainWindow::on_toolButton_save_clicked(bool checked) {
    if (!checked) {
        stopRecording();
        return;
    }
    const InputThreadModul* module = session.input();
    if (module == nullptr || !module->isRunning() || recOptions.saveFolder.isEmpty()) {
        ui->toolButton_save->setChecked(false);
        return;
    }
    recordDir.setPath(recordingFolder(recOptions.saveFolder));
    printDiskFreeSpace();
    const QString name = recordingFileName(
        QDateTime::currentDateTime(),
        QString::fromLatin1(bw::toString(static_cast<bw::MODEL>(module->getModel()))),
        module->getSerialNum());
    // Raised before opening and left raised if the file does not open: rows then find no file.
    recording = true;
    if (!csvWriter.open(recordDir.filePath(name), recOptions)) {
        showFileOpenError(this, *style);
        ui->toolButton_save->setChecked(false);
        return;
    }
    ui->pushButton_rec_option->setEnabled(false);
    ui->toolButton_save->setText(tr("Recording..."));
}

void MainWindow::stopRecording() {
    if (!csvWriter.isOpen()) return;
    csvWriter.close();
    ui->pushButton_rec_option->setEnabled(true);
    ui->toolButton_save->setText(tr("Record"));
    ui->toolButton_save->setChecked(false);
    recording = false;
}

void MainWindow::printDiskFreeSpace() {
    setFreeSpace(freeSpaceGigabytes(recOptions.saveFolder), recOptions.saveFolder);
}

// In the row of the read-outs, the amount stays whole and a long folder path gives way, cut
// at its end; the tool tip holds all of it.
void MainWindow::setFreeSpace(double gigabytes, const QString& path) {
    showFreeSpace(&statusLabel, gigabytes, path);
    statusLabel.setShortestText(freeSpaceText(gigabytes, QString()) + QChar(0x2026));
    statusLabel.setToolTip(statusLabel.text());
}

double MainWindow::rowsPerSecond() const { return recOptions.sampleFreq; }

void MainWindow::saveRow(int row, const bw::SensorsData& latest) { saveValues(row, latest); }

void MainWindow::saveValues(int i, const bw::SensorsData& latest) {
    // Runs on the sampling thread, which holds the series lock; the module outlives the thread.
    const InputThreadModul* module = session.input();
    if (module == nullptr || !csvWriter.isOpen() || !module->isRunning()) return;
    const SensorSeries& s = session.series();
    CsvRow row;
    row.index = i;
    row.imuTime = s.imuTime[i], row.magTime = s.magTime[i], row.baroTime = s.baroTime[i];
    row.accX = s.accX[i], row.accY = s.accY[i], row.accZ = s.accZ[i];
    row.gyroX = s.gyroX[i], row.gyroY = s.gyroY[i], row.gyroZ = s.gyroZ[i];
    row.magX = s.magX[i], row.magY = s.magY[i], row.magZ = s.magZ[i];
    row.orientX = s.orientX[i], row.orientY = s.orientY[i], row.orientZ = s.orientZ[i];
    row.pressure = s.pressure[i], row.altitude = s.altitude[i];
    row.movingState = s.movingState[i];
    row.tempLeft = s.tempLeft[i], row.tempRight = s.tempRight[i];
    using Location = bw::SensorsData::TemperatureData::SENSOR_LOCATION;
    float celsius = 0.f;
    if (latest.temperature.get(Location::IMU, celsius) == bw::SUCCESS) row.tempImu = celsius;
    celsius = 0.f;
    if (latest.temperature.get(Location::BAROMETER, celsius) == bw::SUCCESS)
        row.tempBarometer = celsius;
    csvWriter.writeRow(row);
}
