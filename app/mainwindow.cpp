// The window's life: construction, opening a camera, and tearing down when the camera goes away
// or the window closes.
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

namespace {

constexpr int kDetectPeriodMs = 200;
constexpr int kImagePeriodMs = 40;
// Timers stopped, the window gives threads that still report a moment before it joins them.
constexpr unsigned long kSettleMs = 100;

// The sampling thread hands every appended row's pose to the view; the view copies it once
// per frame.
void turnOrientationView(OGL3DWidget& view, const SampleIngest::Pose& pose) {
    view.setGravity(pose.gravity[0], pose.gravity[1], pose.gravity[2]);
    view.setCameraModelOr(pose.orientation);
    view.setCameraModelPos(bw::Translation(0.f, 0.f, 0.f));
    view.setMovingState(pose.movingState);
}

}  // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), ui(new Ui::MainWindow) {
    ui->setupUi(this);
    readoutFieldFloor = ui->lineEdit_value_0->minimumWidth();
    placeReplayBar();
    recordDir.setPath(recOptions.saveFolder);
    statusBar()->hide();
    style = new Style();
    applyStyle();
    OGL3DWidget* view = ui->widget_3d_view;
    session.setPoseListener(
        [view](const SampleIngest::Pose& pose) { turnOrientationView(*view, pose); });
    session.setRecorder(this);
    connect(&session, &LiveCameraSession::cameraLost, this, &MainWindow::cameraDisconnected);
    initCharts();
    printDiskFreeSpace();
    detectTimer = makeTimer(kDetectPeriodMs, &MainWindow::detectMultipleDevice);
}

MainWindow::~MainWindow() {
    // closeEvent normally did all of this already; a window destroyed without being closed
    // (tests, early exit) still stops the sampling thread, which turns the view, before the
    // widgets go.
    stopViewTimers();
    discardTimer(detectTimer);
    session.close();
    delete ui;
    detectionThread.wait();
    delete style;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    disconnectSignals();
    stopViewTimers();
    discardTimer(detectTimer);
    QThread::msleep(kSettleMs);
    session.close();
    QMainWindow::closeEvent(event);
}

// ---- timers ------------------------------------------------------------------------------------

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

void MainWindow::startViewTimers() {
    imageTimer = makeTimer(kImagePeriodMs, &MainWindow::updateImages);
    plotTimer = makeTimer(plotPeriodMs, &MainWindow::updatePlot);
    displayTimer = makeTimer(displayPeriodMs, &MainWindow::updateDataDisplay);
}

void MainWindow::stopViewTimers() {
    for (QTimer** timer : {&imageTimer, &plotTimer, &displayTimer}) discardTimer(*timer);
}

// ---- the open camera's signals -----------------------------------------------------------------

void MainWindow::connectSignals() {
    InputThreadModul* module = session.input();
    if (module == nullptr) return;
    connect(module, &InputThreadModul::sendContext, this, &MainWindow::setContext);
    connect(module, &InputThreadModul::sendInit, ui->widget_3d_view, &OGL3DWidget::InitProcess);
}

void MainWindow::disconnectSignals() {
    InputThreadModul* module = session.input();
    if (module == nullptr) return;
    disconnect(module, nullptr, this, nullptr);
    disconnect(module, nullptr, ui->widget_3d_view, nullptr);
}

// The 3D view takes its GL context itself.
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

// ---- opening ----------------------------------------------------------------------------------

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
    fillTimeRanges();
    resetCameraStates();
    startViewTimers();

    const int index = std::max(0, ui->comboBox_camera_list->currentIndex());
    if (index < listedCameras.size()) selected = listedCameras[index];
    if (session.open(selected) != bw::SUCCESS) {
        if (!selected.recording.isEmpty()) refuseRecording(selected.recording);
        restartDetection();
        unsetCursor();
        return;
    }
    connectSignals();
    if (!session.prepareGpu()) {
        showMessage(QMessageBox::Critical, tr("Error"),
                    tr("Not enough GPU memory. Try a lower video resolution and/or a lower depth "
                       "quality settings."));
        // The camera stays open but nothing samples or redraws until the list is refreshed;
        // the readout timer would otherwise take the idle camera for a lost one and reopen it.
        stopViewTimers();
        unsetCursor();
        return;
    }
    warnAboutOldFirmware();
    session.start();
    showReplayState();
    startSensorViews(session.model());
    noCamera = false;
    unsetCursor();
    tellIfCutShort(selected.recording);
}

void MainWindow::fillTimeRanges() {
    // Each item carries its seconds.
    QComboBox* range = ui->comboBox_time_range;
    range->addItem(tr("Last 5 sec"), 5);
    range->addItem(tr("Last 10 sec"), 10);
    range->addItem(tr("Last 30 sec"), 30);
    range->addItem(tr("Last 60 sec"), 60);
    range->setCurrentIndex(1);
}

void MainWindow::resetCameraStates() {
    ProgramStates::resetStates();
    ProgramStates::qstringAttr(StringSlot::APP_TITLE) = QStringLiteral("Sensor Data Viewer");
    ProgramStates::setIntAttr(IntSlot::STREAM_QUALITY, streamQuality);
    for (IntSlot slot : {IntSlot::SENSOR_RATE_PERCENT, IntSlot::RATE_PERCENT_11,
                         IntSlot::RATE_PERCENT_12, IntSlot::RATE_PERCENT_17})
        ProgramStates::setIntAttr(slot, sensorRatePercent);
    ProgramStates::setIntAttr(IntSlot::IMAGE_CLICK_LOCK, 0);
    ProgramStates::setIntAttr(IntSlot::OPENING_VALUE_15, 1);
    ProgramStates::setIntAttr(IntSlot::OPENING_VALUE_2, 25000);
    ProgramStates::setIntAttr(IntSlot::OPENING_VALUE_3, 95);
    ProgramStates::setBoolAttr(BoolSlot::OPENING_FLAG_3, true);
    imageTimeOriginUs.reset();
    lastDisplayUpdate = std::chrono::steady_clock::now();
}

void MainWindow::warnAboutOldFirmware() {
    if (!modelInfo(selected.model).hasCameraFirmware()) return;
    const bw::CameraInformation info = session.input()->stereoCamera().getCameraInformation();
    if (info.camera_configuration.firmware_version > kLastOutdatedCameraFirmware) return;
    showMessage(QMessageBox::Warning, tr("Warning"),
                tr("Your firmware needs to be updated. Please update it in ORYX Explorer."));
}

void MainWindow::startSensorViews(const ModelInfo& model) {
    if (!model.imu) {
        showEmptyChart();
        return;
    }
    ui->comboBox_time_range->setEnabled(true);
    ui->frame_data_options->setEnabled(true);
    ui->pushButton_baro->setVisible(model.barometer);
    ui->pushButton_mag->setVisible(model.magnetometer);
    ui->pushButton_temper->setVisible(model.temperatures);
}

// A camera without motion sensors: an empty accelerometer chart over ten seconds.
void MainWindow::showEmptyChart() {
    ui->comboBox_time_range->setEnabled(false);
    ui->frame_data_options->setEnabled(false);
    initCharts();
    DataPlot* plot = ui->widget_chart;
    const float range = session.levels().accRange;
    plot->setValRange(-range, range, false);
    plot->setTimeRange(0, 10, false);
    plot->replot();
}

// ---- closing ----------------------------------------------------------------------------------

void MainWindow::restartDetection() {
    reset();
    discardTimer(detectTimer);
    detectTimer = makeTimer(kDetectPeriodMs, &MainWindow::detectMultipleDevice);
}

void MainWindow::reset() {
    disconnectSignals();
    stopViewTimers();
    QThread::msleep(kSettleMs);
    session.close();
    for (IntSlot slot : {IntSlot::IMAGE_WIDTH, IntSlot::IMAGE_HEIGHT, IntSlot::GRAB_WIDTH,
                         IntSlot::GRAB_HEIGHT, IntSlot::RATE_PERCENT_11, IntSlot::RATE_PERCENT_12})
        ProgramStates::setIntAttr(slot, 0);
    ui->comboBox_time_range->clear();
    on_pushButton_accel_clicked(true);
    ui->pushButton_accel->setChecked(true);
    showReplayState();
}

void MainWindow::cameraDisconnected() {
    const bool replayUnreadable =
        session.input() != nullptr && session.input()->replayBecameUnreadable();
    noCamera = true;
    if (recording) stopRecording();
    disconnectSignals();
    stopViewTimers();
    discardTimer(detectTimer);
    reset();
    displayDefaultValues();
    initCharts();
    if (replayUnreadable) endUnreadableReplay(selected.recording);
    if (detectMultipleDevice() == 0)
        detectTimer = makeTimer(kDetectPeriodMs, &MainWindow::detectMultipleDevice);
}

void MainWindow::updateImages() {
    ++imageFrameCount;
    InputThreadModul* module = session.input();
    if (module != nullptr && !session.model().imu) {
        // Without motion sensors the image clock is the only time base.
        const bw::Timestamp nowUs =
            module->stereoCamera().getTimestamp(bw::TIME_REFERENCE::IMAGE) / 1000;
        if (!imageTimeOriginUs) imageTimeOriginUs = nowUs;
        session.setCurrentTime(static_cast<double>(nowUs - *imageTimeOriginUs) / 1e6);
    }
    ui->widget_3d_view->requestFrame();
}
