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

void MainWindow::saveRow(RowNumber row, const bw::SensorsData& latest) { saveValues(row, latest); }

void MainWindow::saveValues(RowNumber i, const bw::SensorsData& latest) {
    // Runs on the sampling thread, which holds the series lock; the module outlives the thread.
    const InputThreadModul* module = session.input();
    if (module == nullptr || !csvWriter.isOpen() || !module->isRunning()) return;
    const SensorSeries& s = session.series();
    CsvRow row;
    row.index = i.value();
    row.imuTime = s.imuTime.at(i), row.magTime = s.magTime.at(i), row.baroTime = s.baroTime.at(i);
    row.accX = s.accX.at(i), row.accY = s.accY.at(i), row.accZ = s.accZ.at(i);
    row.gyroX = s.gyroX.at(i), row.gyroY = s.gyroY.at(i), row.gyroZ = s.gyroZ.at(i);
    row.magX = s.magX.at(i), row.magY = s.magY.at(i), row.magZ = s.magZ.at(i);
    row.orientX = s.orientX.at(i), row.orientY = s.orientY.at(i), row.orientZ = s.orientZ.at(i);
    row.pressure = s.pressure.at(i), row.altitude = s.altitude.at(i);
    row.movingState = s.movingState.at(i);
    row.tempLeft = s.tempLeft.at(i), row.tempRight = s.tempRight.at(i);
    using Location = bw::SensorsData::TemperatureData::SENSOR_LOCATION;
    float celsius = 0.f;
    if (latest.temperature.get(Location::IMU, celsius) == bw::SUCCESS) row.tempImu = celsius;
    celsius = 0.f;
    if (latest.temperature.get(Location::BAROMETER, celsius) == bw::SUCCESS)
        row.tempBarometer = celsius;
    if (csvWriter.writeRow(row) != CsvWriter::WriteOutcome::FAILED) return;
    // The user is told on the GUI thread; this thread must not wait for a message box.
    QMetaObject::invokeMethod(
        this,
        [this, path = csvWriter.fileName(), reason = csvWriter.errorString()] {
            recordingFailed(path, reason);
        },
        Qt::QueuedConnection);
}

// The recording stops and the user learns why; the camera and the views go on. A recording the
// user has stopped (or begun anew) meanwhile is left as it is.
void MainWindow::recordingFailed(const QString& path, const QString& reason) {
    if (csvWriter.hasFailed()) stopRecording();
    showFileWriteError(this, *style, path, reason);
}
