#include "magcalibdlg.h"

#include <qwt_plot_curve.h>
#include <qwt_symbol.h>

#include <QBrush>
#include <QColor>
#include <QGroupBox>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPen>
#include <QPushButton>
#include <algorithm>
#include <bw/ORYXmcu.hpp>
#include <bw/hid.hpp>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <vector>

#include "CalibPlot.h"
#include "CameraModels.h"
#include "Compass.h"
#include "mag_calib.h"
#include "magcalibrecord.h"
#include "messagebox.h"
#include "orientcount.h"
#include "palette.h"
#include "restyle.h"
#include "style.h"
#include "ui_magcalibdlg.h"

namespace {

constexpr double kRadToDeg = 57.295779513;
constexpr int kUpdatePeriodMs = 100;
constexpr int kMaxReadFailures = 100;
constexpr int kMaxStoreAttempts = 10;
constexpr double kMaxSampleRateHz = 60.0;
// Device ticks of the micro-controller clock, in microseconds.
constexpr double kTickUs = 39.0;

// Plane colours of the scatter clouds and guide ellipses, translucent.
const QColor kPlaneColour[3] = {QColor(255, 53, 53, 100), QColor(77, 156, 210, 100),
                                QColor(105, 199, 85, 100)};

QwtSymbol* makeSymbol(QwtSymbol::Style shape, const QColor& colour, int size) {
    return new QwtSymbol(shape, QBrush(colour), QPen(colour, 1.0, Qt::SolidLine),
                         QSize(size, size));
}

QwtPlotCurve* makeCurve(const QString& title, QwtSymbol* symbol, QwtPlot* plot) {
    auto* curve = new QwtPlotCurve(title);
    curve->setStyle(QwtPlotCurve::NoCurve);
    curve->setSymbol(symbol);  // the curve owns the symbol from here on
    curve->attach(plot);       // and the plot owns the curve
    return curve;
}

struct Range {
    double min = 0.0;
    double max = 0.0;
    double width() const { return std::abs(max - min); }
};

Range rangeOf(const QVector<double>& v) {
    Range r;
    if (v.isEmpty()) return r;
    const auto mm = std::minmax_element(v.begin(), v.end());
    r.min = *mm.first;
    r.max = *mm.second;
    return r;
}

// The guide ellipse of one plane: the ellipse inscribed in the bounding box of the samples. The
// plots take float coordinates; fields of a few hundred µT keep far more precision in a float
// than a pixel shows.
void showBoundingEllipse(CalibPlot* plot, CalibPlot::_plane plane, const Range& horizontal,
                         const Range& vertical) {
    plot->setFitEllipse(plane, static_cast<float>(horizontal.min),
                        static_cast<float>(vertical.min), static_cast<float>(horizontal.width()),
                        static_cast<float>(vertical.width()));
}

double largestAbs(const QVector<double>& a, const QVector<double>& b, const QVector<double>& c) {
    double m = 0.0;
    for (const QVector<double>* v : {&a, &b, &c})
        for (double value : *v) m = std::max(m, std::abs(value));
    return m;
}

void sleepMs(long ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

// The status label has a style sheet, and a sheet's colours outrank the palette: the quality
// colour has to go into the sheet. Only a changed sheet is set, as each one re-polishes the label.
void colourStatusLabel(QLabel* label, const Style& style, const QColor& background) {
    const QString sheet =
        style.labelOnColour.arg(clr::toStr(background.toRgb())) + style.fontLabelMedium;
    if (label->styleSheet() != sheet) label->setStyleSheet(sheet);
    label->setAutoFillBackground(true);
}

}  // namespace

MagCalibDlg::MagCalibDlg(int serial_, QWidget* parent)
    : QDialog(parent),
      ui(std::make_unique<Ui_MagCalibDlg>()),
      style(std::make_shared<Style>()),
      serial(serial_) {
    ui->setupUi(this);
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
    setBwStyleSheet();
    ui->widget_raw_compass->setRaw(true);

    // Nine diamonds for the clouds (per-plane plots, mixed raw plot, calibrated plot), then
    // three stars for the newest raw sample of each plane.
    for (int i = 0; i < 9; ++i) symbols[i] = makeSymbol(QwtSymbol::Diamond, kPlaneColour[i % 3], 5);
    for (int i = 0; i < 3; ++i)
        symbols[9 + i] = makeSymbol(QwtSymbol::Star1, kPlaneColour[i].darker(200), 9);
    initPlots();

    connect(this, &MagCalibDlg::cameraError, this, &MagCalibDlg::onCameraError,
            Qt::QueuedConnection);
    connect(&updateTimer, &QTimer::timeout, this, &MagCalibDlg::onUpdateTimer);

    if (initOryxMcu()) startAcquisition();
}

MagCalibDlg::~MagCalibDlg() {
    updateTimer.stop();
    stopRequested = true;
    if (grabThread.joinable()) grabThread.join();
    if (mcu) {
        mcu->stopCapture();
        mcu->close();
    }
}

int MagCalibDlg::rawSampleCount() const {
    std::lock_guard<std::mutex> lock(sampleMutex);
    return rawX.size();
}

int MagCalibDlg::calibratedSampleCount() const {
    std::lock_guard<std::mutex> lock(sampleMutex);
    return calX.size();
}

void MagCalibDlg::currentCalibration(double offsetOut[3], double scaleOut[3]) const {
    for (int i = 0; i < 3; ++i) {
        offsetOut[i] = offset[i];
        scaleOut[i] = scale[i];
    }
}

// ---- device ------------------------------------------------------------------------------

void MagCalibDlg::updateBwDevList() {
    devFirmware.clear();
    devSerials.clear();
    devProductIds.clear();
    const BwDeviceList list = filterMagDevices(bw::hidEnumerate(bw::ORYX_USB_VENDOR_ID, 0));
    devFirmware = list.firmware;
    devSerials = list.serials;
    devProductIds = list.productIds;
}

bool MagCalibDlg::initOryxMcu() {
    updateBwDevList();
    if (!devSerials.contains(QStringLiteral("%1").arg(serial))) {
        emit cameraError(tr("ORYX_C/ORYX_D with serial number %1 not detected. Please verify the "
                            "connections and retry")
                             .arg(serial));
        return false;
    }
    mcu.reset();
    mcu = std::make_shared<bw::ORYXmcu>(false, bw::ORYX_USB_VENDOR_ID,
                                        modelFromSerial(unsigned(serial)), false, "");
    const int result = mcu->open(static_cast<unsigned>(serial), false, static_cast<bw::_imu_odr>(2),
                                 nullptr, nullptr, true, false);
    if (result != 0) {
        mcuClosed = true;
        emit cameraError(
            tr("Cannot open the ORYX_C/ORYX_D camera. Please verify the connections and restart"));
        return false;
    }
    if (!loadCalibData()) {
        emit cameraError(
            tr("Cannot correctly load calibration parameters from ORYX_C/ORYX_D. "
               "Please verify the connection."));
        return false;
    }
    mcuClosed = false;
    return true;
}

bool MagCalibDlg::startAcquisition() {
    if (threadRunning) return true;
    if (!mcu && !initOryxMcu()) return false;
    if (!mcu->isCapturing()) mcu->startCapture(0.0f);
    setPlotsAutoscale(true);
    // A thread that ended by itself (read failures) is collected before the next one starts.
    if (grabThread.joinable()) grabThread.join();
    stopRequested = false;
    threadRunning = true;
    grabThread = std::thread(&MagCalibDlg::magDataGrabThread, this, mcu);
    updateTimer.start(kUpdatePeriodMs);
    return true;
}

void MagCalibDlg::stopAcquisition() {
    if (mcu) mcu->stopCapture();
    ui->pushButton_start->setChecked(false);
    ui->pushButton_start->setText(tr(" Continue Calibration"));
    ui->pushButton_start->setIcon(QIcon(QStringLiteral(":/images/play.png")));
    updateTimer.stop();
    if (grabThread.joinable()) {
        stopRequested = true;
        grabThread.join();
    }
}

void MagCalibDlg::magDataGrabThread(std::shared_ptr<bw::ORYXmcu> device) {
    struct ClearOnExit {
        std::atomic<bool>& flag;
        ~ClearOnExit() { flag = false; }
    } clearOnExit{threadRunning};

    if (!device->isCapturing()) device->startCapture(0.0f);
    {
        // A fresh coverage grid per run. Nothing feeds it and its share is not shown: the
        // device's own verdict rates a calibration. The wiring is kept as it was shipped.
        std::lock_guard<std::mutex> lock(sampleMutex);
        orientCount = std::make_shared<OrientCount>();
    }
    if (stopRequested) return;

    std::uint16_t failures = 0;
    double previousT = 0.0;
    bool havePrevious = false;
    for (;;) {
        threadRunning = true;
        const bw::_imu_reader_data record = device->getIMUReaderData();
        if (record.valid != 1 || record.mag_update == 0) {
            ++failures;
            if (failures > kMaxReadFailures) {
                threadRunning = false;
                emit cameraError(tr("Error retrieving sensors data"));
                return;
            }
            sleepMs(1);
            if (stopRequested) return;
            continue;
        }
        if (record.mag_update == 1) {
            if (stopRequested) return;
            continue;
        }
        const std::uint64_t ticks = record.timestamp;
        const double t = static_cast<double>(ticks) * kTickUs / 1000.0;
        if (havePrevious && t == previousT) {
            if (stopRequested) return;
            continue;
        }
        const MagAxes field = magAxesFromRaw(record.mag[0], record.mag[1], record.mag[2]);
        // The rate needs two samples; the first one only sets the time base.
        if (havePrevious) sampleRate = std::min(1000.0 / (t - previousT), kMaxSampleRateHz);

        if (acquiring) {
            std::lock_guard<std::mutex> lock(sampleMutex);
            rawX.append(field.x);
            rawY.append(field.y);
            rawZ.append(field.z);
        }

        const bw::_imu_pose_data pose = device->getIMUPose(6);
        const bw::Vector3<float> mag(pose.mag[0], pose.mag[1], pose.mag[2]);
        const bw::Vector3<float> gravity(pose.gravity[0], pose.gravity[1], pose.gravity[2]);
        const double uncalibrated = device->calcMagHeading(mag, gravity) * kRadToDeg;
        const int status = pose.mag_calib_status;
        headingUncalib = uncalibrated;
        headingCalib = status == MAG_CALIB_NONE ? uncalibrated : pose.mag_heading * kRadToDeg;
        if (!acquiring) {
            calibStatus = status;
            calibQuality = pose.mag_calib_quality;
        }

        // Whole milliseconds of a period in seconds: no pause above 1 Hz, the device's sample
        // arrival paces the loop.
        const double rate = sampleRate;
        if (rate > 0.0) {
            const long pause = static_cast<long>(1.0 / rate);
            if (pause > 0) sleepMs(pause);
        }

        previousT = t;
        havePrevious = true;
        failures = 0;
        if (stopRequested) return;
    }
}

void MagCalibDlg::calibrateData() {
    MagCalib calib;
    std::vector<double> x(rawX.begin(), rawX.end());
    std::vector<double> y(rawY.begin(), rawY.end());
    std::vector<double> z(rawZ.begin(), rawZ.end());
    if (!calib.ellipsoidCalibration(x, y, z, 1.0)) return;
    for (int i = 0; i < 3; ++i) {
        offset[i] = calib.offset[i];
        scale[i] = calib.scale[i];
    }
    calX.clear();
    calY.clear();
    calZ.clear();
    const int n = rawX.size();
    calX.reserve(n);
    calY.reserve(n);
    calZ.reserve(n);
    for (int i = 0; i < n; ++i) {
        calX.append((rawX[i] - offset[0]) * scale[0]);
        calY.append((rawY[i] - offset[1]) * scale[1]);
        calZ.append((rawZ[i] - offset[2]) * scale[2]);
    }
    updatePlots();
    calibToStore = true;
}

bool MagCalibDlg::loadCalibData() {
    if (!mcu && !initOryxMcu()) return false;
    const bool wasCapturing = mcu->isCapturing();
    if (wasCapturing) mcu->stopCapture();
    const int result = mcu->updateEepromMemory(true);
    if (result == 0) unpackMagCalib(mcu->eeprom(), offset, scale);
    if (wasCapturing) mcu->startCapture(0.0f);
    return result == 0;
}

bool MagCalibDlg::saveCalibData() {
    if (!mcu && !initOryxMcu()) return false;
    const bool wasCapturing = mcu->isCapturing();
    if (wasCapturing) mcu->stopCapture();
    bw::_mag_calib_data record = packMagCalib(offset, scale);

    bool stored = mcu->writeMagCalibInEEprom(record) == 0;
    if (stored) {
        stored = false;
        for (int attempt = 1; attempt <= kMaxStoreAttempts; ++attempt) {
            if (mcu->updateEepromMemory(true) == 0 && eepromHoldsRecord(mcu->eeprom(), record)) {
                stored = true;
                break;
            }
            if (attempt == kMaxStoreAttempts || mcu->writeMagCalibInEEprom(record) != 0) break;
        }
    }
    // The live heading keeps running whether or not the store worked.
    if (wasCapturing) mcu->startCapture(0.0f);
    if (stored) calibToStore = false;
    return stored;
}

// ---- buttons -----------------------------------------------------------------------------

void MagCalibDlg::on_pushButton_start_clicked(bool checked) {
    if (checked) {
        if (!threadRunning && !startAcquisition()) {
            ui->pushButton_start->setChecked(false);
            acquiring = false;
            calibToStore = false;
            return;
        }
        showMessage(this, *style, QMessageBox::Information, tr("Calibration starting..."),
                    tr("For a good calibration, start with three full rotations of the camera "
                       "around the three main axes, then continue rotating it in the space, "
                       "covering all the possible orientations.\nPress 'STOP CALIBRATION' when "
                       "completed."),
                    {tr("Ok")});
        ui->pushButton_start->setText(tr(" Stop Calibration"));
        ui->pushButton_start->setIcon(QIcon(QStringLiteral(":/images/stop_h.png")));
        setPlotsAutoscale(true);
        acquiring = true;
        ui->pushButton_save_calib->setEnabled(false);
        ui->pushButton_reset->setEnabled(false);
    } else {
        showMessage(this, *style, QMessageBox::Information, tr("Calibration stopped"),
                    tr("Press 'Store Calibration' to save the parameters on the camera and to "
                       "apply the new calibration."),
                    {tr("Ok")});
        ui->pushButton_start->setText(tr(" Continue Calibration"));
        ui->pushButton_start->setIcon(QIcon(QStringLiteral(":/images/play.png")));
        {
            std::lock_guard<std::mutex> lock(sampleMutex);
            calibrateData();
        }
        scalePlots();
        acquiring = false;
        calibToStore = true;
        ui->pushButton_save_calib->setEnabled(true);
        ui->pushButton_reset->setEnabled(true);
    }
}

void MagCalibDlg::on_pushButton_clear_data_clicked() {
    if (!acquiring) ui->pushButton_start->setText(tr(" Start Calibration"));
    clearPlots();
    calibToStore = false;
}

void MagCalibDlg::showStoreError(int icon) {
    showMessage(this, *style, static_cast<QMessageBox::Icon>(icon), tr("Warning!"),
                tr("An error occurred while saving calibration parameters. Please retry."),
                {tr("Ok")});
}

void MagCalibDlg::on_pushButton_save_calib_clicked() {
    const int answer = showMessage(
        this, *style, QMessageBox::Warning, tr("Warning!"),
        tr("Pressing OK the current Magnetometer Calibration setting will be overwritten. "
           "Continue?"),
        {tr("Cancel"), tr("Ok")});
    if (answer == 0) return;
    if (!saveCalibData()) showStoreError(QMessageBox::Critical);
}

void MagCalibDlg::on_pushButton_reset_clicked() {
    const int answer = showMessage(
        this, *style, QMessageBox::Warning, tr("Warning!"),
        tr("Pressing OK the current Magnetometer Calibration setting will be lost.\nContinue?"),
        {tr("No"), tr("Yes")});
    if (answer == 0) return;
    clearPlots();
    if (!saveCalibData()) showStoreError(QMessageBox::Warning);
}

void MagCalibDlg::on_pushButton_exit_clicked() {
    if (calibToStore) {
        const int answer = showMessage(
            this, *style, QMessageBox::Question, tr("ORYX Magnetometer Calibration"),
            tr("Calibration parameters have not been saved on camera.\nClosing the window all "
               "the data will be lost.\nContinue?"),
            {tr("No"), tr("Yes")});
        if (answer != 1) return;
    }
    if (!mcuClosed) {
        stopAcquisition();
        if (mcu) mcu->close();
        mcuClosed = true;
    }
    accept();
}

void MagCalibDlg::onCameraError(QString message) {
    showMessage(this, *style, QMessageBox::Critical, tr("ORYX Camera error"), message, {tr("Ok")});
    stopAcquisition();
}

void MagCalibDlg::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        event->accept();  // the dialog is left with the exit button only
        return;
    }
    QDialog::keyPressEvent(event);
}

// ---- refresh -----------------------------------------------------------------------------

void MagCalibDlg::onUpdateTimer() {
    if (acquiring) {
        std::lock_guard<std::mutex> lock(sampleMutex);
        if (orientCount) orientCount->getPercNotZero();  // unused, see magDataGrabThread
        const int n = rawX.size();
        if (n > 100 && n - lastCalibCount > 49) {
            calibrateData();
            lastCalibCount = n;
            const Range rx = rangeOf(rawX), ry = rangeOf(rawY), rz = rangeOf(rawZ);
            for (CalibPlot* plot : {ui->widget_plot_XY, ui->widget_plot_mixed_raw})
                showBoundingEllipse(plot, CalibPlot::XY, rx, ry);
            for (CalibPlot* plot : {ui->widget_plot_XZ, ui->widget_plot_mixed_raw})
                showBoundingEllipse(plot, CalibPlot::XZ, rx, rz);
            for (CalibPlot* plot : {ui->widget_plot_YZ, ui->widget_plot_mixed_raw})
                showBoundingEllipse(plot, CalibPlot::YZ, ry, rz);
            const Range cx = rangeOf(calX), cy = rangeOf(calY), cz = rangeOf(calZ);
            CalibPlot* cal = ui->widget_plot_calibrated;
            showBoundingEllipse(cal, CalibPlot::XY, cx, cy);
            showBoundingEllipse(cal, CalibPlot::XZ, cx, cz);
            showBoundingEllipse(cal, CalibPlot::YZ, cy, cz);
        }
        // Five scatter plots of thousands of points are costly to draw: only new samples are
        // worth it. A device that stops delivering leaves the dialog idle, not busy.
        if (n != plottedSampleCount) updatePlots();
    }

    const double uncal = headingUncalib;
    const double cal = headingCalib;
    ui->label_heading_uncalib->setText(tr("Uncalibrated\n%1°").arg(uncal, 6, 'f', 2, QChar(' ')));
    ui->label_heading_calib->setText(tr("Calibrated\n%1°").arg(cal, 6, 'f', 2, QChar(' ')));
    ui->widget_raw_compass->setValue(uncal);
    ui->widget_calib_compass->setValue(cal);

    QLabel* label = ui->label_mag_calib_quality;
    if (acquiring) {
        label->setText(tr("CALIBRATING"));
        return;
    }
    if (calibToStore) {
        label->setText(tr("CALIBRATION TO BE STORED"));
        return;
    }
    switch (calibStatus.load()) {
        case MAG_CALIB_GOOD:
            label->setText(tr("GOOD"));
            break;
        case MAG_CALIB_OK:
            label->setText(tr("OK"));
            break;
        case MAG_CALIB_NOT_GOOD:
            label->setText(tr("NOT GOOD"));
            break;
        case MAG_CALIB_NONE:
            label->setText(tr("MAG. NOT CALIBRATED"));
            break;
        default:
            label->setText(tr("NOT AVAILABLE"));
            break;
    }
    colourStatusLabel(
        label, *style,
        QColor::fromHsvF(std::clamp(calibQuality.load() * 0.33, 0.0, 1.0), 0.75, 0.8, 1.0));
}

// ---- plots -------------------------------------------------------------------------------

void MagCalibDlg::initPlots() {
    const QString planes[3] = {QStringLiteral("XY"), QStringLiteral("XZ"), QStringLiteral("YZ")};
    CalibPlot* perPlane[3] = {ui->widget_plot_XY, ui->widget_plot_XZ, ui->widget_plot_YZ};
    for (int p = 0; p < 3; ++p) {
        curveRaw[p] = makeCurve(QStringLiteral("Raw Mag ") + planes[p], symbols[p], perPlane[p]);
        curveLastRaw[p] =
            makeCurve(QStringLiteral("LastRaw Mag ") + planes[p], symbols[9 + p], perPlane[p]);
        curveMixedRaw[p] = makeCurve(QStringLiteral("RAW Mag ") + planes[p], symbols[3 + p],
                                     ui->widget_plot_mixed_raw);
    }
    const QString calibratedTitles[3] = {QStringLiteral("Calibrated Mag XY"),
                                         QStringLiteral("Calibrated Mag Xz"),
                                         QStringLiteral("Calibrated Mag YZ")};
    for (int p = 0; p < 3; ++p)
        curveCalibrated[p] =
            makeCurve(calibratedTitles[p], symbols[6 + p], ui->widget_plot_calibrated);
}

void MagCalibDlg::updatePlots() {
    // Pairs per plane: XY, XZ, YZ.
    const QVector<double>* rawH[3] = {&rawX, &rawX, &rawY};
    const QVector<double>* rawV[3] = {&rawY, &rawZ, &rawZ};
    const QVector<double>* calH[3] = {&calX, &calX, &calY};
    const QVector<double>* calV[3] = {&calY, &calZ, &calZ};
    for (int p = 0; p < 3; ++p) {
        curveRaw[p]->setSamples(*rawH[p], *rawV[p]);
        curveMixedRaw[p]->setSamples(*rawH[p], *rawV[p]);
        curveCalibrated[p]->setSamples(*calH[p], *calV[p]);
        if (rawH[p]->isEmpty()) {
            curveLastRaw[p]->setSamples(QVector<double>(), QVector<double>());
        } else {
            curveLastRaw[p]->setSamples(QVector<double>{rawH[p]->last()},
                                        QVector<double>{rawV[p]->last()});
        }
    }
    for (CalibPlot* plot : {ui->widget_plot_XY, ui->widget_plot_XZ, ui->widget_plot_YZ,
                            ui->widget_plot_mixed_raw, ui->widget_plot_calibrated})
        plot->replot();
    plottedSampleCount = rawX.size();
}

void MagCalibDlg::clearPlots() {
    {
        std::lock_guard<std::mutex> lock(sampleMutex);
        rawX.clear();
        rawY.clear();
        rawZ.clear();
        calX.clear();
        calY.clear();
        calZ.clear();
        lastCalibCount = 0;
        for (int i = 0; i < 3; ++i) {
            offset[i] = 0.0;
            scale[i] = 1.0;
        }
        setPlotsAutoscale(true);
        updatePlots();
    }
}

void MagCalibDlg::scalePlots() {
    double rawLimit = 0.0;
    double calLimit = 0.0;
    {
        std::lock_guard<std::mutex> lock(sampleMutex);
        rawLimit = largestAbs(rawX, rawY, rawZ) * 1.1;
        calLimit = largestAbs(calX, calY, calZ) * 1.1;
    }
    for (CalibPlot* plot :
         {ui->widget_plot_XY, ui->widget_plot_XZ, ui->widget_plot_YZ, ui->widget_plot_mixed_raw}) {
        plot->setAxisScale(QwtPlot::xBottom, -rawLimit, rawLimit);
        plot->setAxisScale(QwtPlot::yLeft, -rawLimit, rawLimit);
    }
    ui->widget_plot_calibrated->setAxisScale(QwtPlot::xBottom, -calLimit, calLimit);
    ui->widget_plot_calibrated->setAxisScale(QwtPlot::yLeft, -calLimit, calLimit);
}

void MagCalibDlg::setPlotsAutoscale(bool on) {
    for (CalibPlot* plot : {ui->widget_plot_XY, ui->widget_plot_XZ, ui->widget_plot_YZ,
                            ui->widget_plot_mixed_raw, ui->widget_plot_calibrated}) {
        plot->setAxisAutoScale(QwtPlot::xBottom, on);
        plot->setAxisAutoScale(QwtPlot::yLeft, on);
    }
}

// Nothing on the form depends on the state beyond what the slots set; kept as the hook it was.
void MagCalibDlg::updateForms() {}

void MagCalibDlg::setBwStyleSheet() {
    replaceStyleSheet(this, style->baseWindow);
    setFont(style->font);
    for (QPushButton* button :
         {ui->pushButton_start, ui->pushButton_clear_data, ui->pushButton_save_calib,
          ui->pushButton_reset, ui->pushButton_exit}) {
        button->setStyleSheet(style->sideMenuButton);
    }
    for (QLabel* label : {ui->label_heading_uncalib, ui->label_heading_calib,
                          ui->label_mag_calib_quality, ui->Instructionlabel}) {
        label->setStyleSheet(style->labelPlain + style->fontLabelMedium);
    }
    ui->label_mag_calib_quality->setAlignment(Qt::AlignCenter);
    for (QGroupBox* box :
         {ui->groupBox_check, ui->groupBox_plane_xy, ui->groupBox_plane_yz, ui->groupBox_plane_xz,
          ui->groupBox_mixed_raw, ui->groupBox_mixed_calib}) {
        box->setStyleSheet(style->groupBoxTitled);
    }
    const int logoHeight = 20;
    ui->label_logo->setPixmap(QPixmap(QStringLiteral(":/images/ORYX_white.png"))
                                  .scaledToHeight(logoHeight, Qt::SmoothTransformation));
}
