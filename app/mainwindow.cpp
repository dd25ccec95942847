#include "mainwindow.h"

#include <QCloseEvent>
#include <QThread>
#include <QTimer>

#include "DataPlot.h"
#include "InputThreadModul.h"
#include "OGL3DWidget.h"
#include "messagebox.h"
#include "programstates.h"
#include "style.h"
#include "ui_mainwindow.h"

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), ui(new Ui::MainWindow) {
    ui->setupUi(this);
    recordDir.setPath(recOptions.saveFolder);
    statusBar()->hide();
    style = new Style();
    applyStyle();
    initCharts();
    printDiskFreeSpace();
    detectTimer = makeTimer(200, &MainWindow::detectMultipleDevice);
}

MainWindow::~MainWindow() {
    // closeEvent normally did all of this already; a window destroyed without being closed
    // (tests, early exit) still stops the sampling thread before the camera goes.
    stopViewTimers();
    discardTimer(detectTimer);
    stopSampling();
    delete ui;
    releaseInput();
    delete dataThread;
    detectionThread.wait();
    delete style;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    disconnectSignals();
    stopViewTimers();
    discardTimer(detectTimer);
    QThread::msleep(100);
    stopSampling();
    releaseInput();
    QMainWindow::closeEvent(event);
}

template <typename Slot>
QTimer* MainWindow::makeTimer(int periodMs, Slot slot) {
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, slot);
    timer->start(periodMs);
    return timer;
}

void MainWindow::discardTimer(QTimer*& timer) {
    if (timer == nullptr) return;
    // Timers are often discarded from their own timeout slot, so they go later, not now.
    timer->stop();
    timer->disconnect();
    timer->deleteLater();
    timer = nullptr;
}

void MainWindow::stopViewTimers() {
    for (QTimer** timer : {&imageTimer, &plotTimer, &displayTimer}) discardTimer(*timer);
}

void MainWindow::stopSampling() {
    if (dataThread == nullptr) return;
    // The thread may already have ended by itself (camera lost); it must still be joined.
    stopDataThread = true;
    if (dataThread->joinable()) dataThread->join();
    delete dataThread;
    dataThread = nullptr;
}

void MainWindow::releaseInput() {
    std::lock_guard<std::mutex> lock(inputLifetime);
    delete inputModule.exchange(nullptr);
}

void MainWindow::connectSignals() {
    InputThreadModul* module = inputModule.load();
    if (module == nullptr) return;
    connect(module, &InputThreadModul::sendContext, this, &MainWindow::setContext);
    connect(module, &InputThreadModul::sendInit, ui->widget_3d_view, &OGL3DWidget::InitProcess);
    // The loss is reported from the grab or the sampling thread and handled here. By then the
    // window may already have torn that camera down (the readout notices a loss too), so a
    // report about an earlier camera is dropped.
    const int generation = ++inputGeneration;
    connect(
        module, &InputThreadModul::DetectORYXDisconnect, this,
        [this, generation] {
            if (generation == inputGeneration) cameraDisconnected();
        },
        Qt::QueuedConnection);
}

void MainWindow::disconnectSignals() {
    withInput([this](InputThreadModul& module) {
        disconnect(&module, nullptr, this, nullptr);
        disconnect(&module, nullptr, ui->widget_3d_view, nullptr);
    });
}

void MainWindow::setContext() {}

void MainWindow::showMessage(int icon, const QString& title, const QString& text) {
    ::showMessage(this, *style, static_cast<QMessageBox::Icon>(icon), title, text, {tr("Ok")});
}

void MainWindow::displayDefaultValues() {
    ui->label_sensor_rate->setText(QStringLiteral("---"));
    ui->lineEdit_value_0->setText(QStringLiteral("---"));
    ui->lineEdit_value_1->setText(QStringLiteral("---"));
    ui->lineEdit_value_2->setText(QStringLiteral("---"));
}

void MainWindow::createLiveInput() {
    // The message boxes below run a nested event loop while the view timers already tick; the
    // readout must not take the camera being opened for a lost one meanwhile.
    openingCamera = true;
    struct OpeningDone {
        bool& flag;
        ~OpeningDone() { flag = false; }
    } openingDone{openingCamera};
    setCursor(Qt::BusyCursor);
    reset();
    ui->comboBox_time_range->addItems(
        {tr("Last 5 sec"), tr("Last 10 sec"), tr("Last 30 sec"), tr("Last 60 sec")});
    ui->comboBox_time_range->setCurrentIndex(1);

    ProgramStates::resetStates();
    ProgramStates::qstringAttr(1) = QStringLiteral("Sensor Data Viewer");
    ProgramStates::setIntAttr(1, streamQuality);
    for (int i : {13, 11, 12, 17}) ProgramStates::setIntAttr(i, sensorRatePercent);
    ProgramStates::setIntAttr(4, 0);
    ProgramStates::setIntAttr(15, 1);
    ProgramStates::setIntAttr(2, 25000);
    ProgramStates::setIntAttr(3, 95);
    ProgramStates::setBoolAttr(3, true);

    imageTimer = makeTimer(40, &MainWindow::updateImages);
    plotTimer = makeTimer(plotPeriodMs, &MainWindow::updatePlot);
    displayTimer = makeTimer(displayPeriodMs, &MainWindow::updateDataDisplay);

    inputModule = new InputThreadModul();
    connectSignals();
    inputModule.load()->enableToStart(true);

    const int index = std::max(0, ui->comboBox_camera_list->currentIndex());
    if (index < deviceIds.size()) {
        selectedId = deviceIds[index];
        selectedSerial = deviceSerials[index];
        selectedModel = deviceModels[index];
    }
    if (openSelectedCamera() != bw::SUCCESS) {
        restartDetection();
        unsetCursor();
        return;
    }
    InputThreadModul* module = inputModule.load();
    if (!module->CreateMemories()) {
        showMessage(QMessageBox::Critical, tr("Error"),
                    tr("Not enough GPU memory. Try a lower video resolution and/or a lower depth "
                       "quality settings."));
        // The camera stays open but nothing samples or redraws until the list is refreshed;
        // the readout timer would otherwise take the idle camera for a lost one and reopen it.
        stopViewTimers();
        unsetCursor();
        return;
    }
    if (selectedModel != 30 && selectedModel != 31) {
        const bw::CameraInformation info = module->stereoCamera().getCameraInformation();
        if (info.camera_configuration.firmware_version <= 1141u)
            showMessage(QMessageBox::Warning, tr("Warning"),
                        tr("Your firmware needs to be updated. Please update it in ORYX "
                           "Explorer."));
    }
    module->startGrabbing();
    startSensorViews(module->getModel());
    noCamera = false;
    unsetCursor();
}

int MainWindow::openSelectedCamera() {
    // Device polling must not query the cameras while one is being opened.
    std::lock_guard<std::mutex> lock(detectionThread.mutex());
    InputThreadModul* module = inputModule.load();
    switch (selectedModel) {
        case 1:
        case 2:
        case 3:
            return module->live(selectedSerial);
        case 4:
        case 5:
            return module->gmsl(selectedId);
        case 30:
        case 31:
            return module->gmsl_one(selectedId);
        default:
            // ORYX (code 0) and unknown codes are never opened.
            return bw::FAILURE;
    }
}

void MainWindow::startSensorViews(unsigned model) {
    if (model == 0) {
        // No motion sensors: an empty accelerometer chart over ten seconds.
        ui->comboBox_time_range->setEnabled(false);
        ui->frame_data_options->setEnabled(false);
        initCharts();
        DataPlot* plot = ui->widget_chart;
        plot->updateData(DataPlot::ACC_X, series.imuTime, series.accX, false);
        plot->updateData(DataPlot::ACC_Y, series.imuTime, series.accY, false);
        plot->updateData(DataPlot::ACC_Z, series.imuTime, series.accZ, false);
        plot->setValRange(-levels.accRange, levels.accRange, false);
        plot->setTimeRange(0, 10, false);
        plot->replot();
        return;
    }
    stopDataThread = false;
    dataThreadRunning = true;
    dataThread = new std::thread(&MainWindow::dataThreadFunc, this);
    ui->comboBox_time_range->setEnabled(true);
    ui->frame_data_options->setEnabled(true);
    const bool hasBaroAndMag = model != 1 && model != 4 && model != 5;
    ui->pushButton_baro->setVisible(hasBaroAndMag);
    ui->pushButton_mag->setVisible(hasBaroAndMag);
    ui->pushButton_temper->setVisible(model != 1);
}

void MainWindow::restartDetection() {
    reset();
    discardTimer(detectTimer);
    detectTimer = makeTimer(200, &MainWindow::detectMultipleDevice);
}

void MainWindow::reset() {
    disconnectSignals();
    stopViewTimers();
    QThread::msleep(100);
    stopSampling();
    releaseInput();
    for (int i = 7; i <= 12; ++i) ProgramStates::setIntAttr(i, 0);
    ui->comboBox_time_range->clear();
    on_pushButton_accel_clicked(true);
    ui->pushButton_accel->setChecked(true);
}

void MainWindow::cameraDisconnected() {
    noCamera = true;
    if (recording) stopRecording();
    ++inputGeneration;
    disconnectSignals();
    stopViewTimers();
    discardTimer(detectTimer);
    reset();
    displayDefaultValues();
    initCharts();
    if (detectMultipleDevice() == 0)
        detectTimer = makeTimer(200, &MainWindow::detectMultipleDevice);
}

void MainWindow::updateImages() {
    ++imageFrameCount;
    withInput([this](InputThreadModul& module) {
        if (module.getModel() != 0) return;
        // Without motion sensors the image clock is the only time base.
        static bool haveOrigin = false;
        static bw::Timestamp originUs = 0;
        const bw::Timestamp nowUs =
            module.stereoCamera().getTimestamp(bw::TIME_REFERENCE::IMAGE) / 1000;
        if (!haveOrigin) {
            haveOrigin = true;
            originUs = nowUs;
        }
        levels.currentTime = static_cast<double>(nowUs - originUs) / 1e6;
    });
    ui->widget_3d_view->requestFrame();
}
