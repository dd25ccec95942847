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
#include <cmath>

#include "CalibPlot.h"
#include "Compass.h"
#include "messagebox.h"
#include "palette.h"
#include "restyle.h"
#include "style.h"
#include "ui_magcalibdlg.h"

namespace {

constexpr int kUpdatePeriodMs = 100;

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
    plot->setFitEllipse(plane, static_cast<float>(horizontal.min), static_cast<float>(vertical.min),
                        static_cast<float>(horizontal.width()),
                        static_cast<float>(vertical.width()));
}

// The largest magnitude of any component of the samples, raw or corrected.
double largestAbs(const MagSampleSet& samples, bool corrected) {
    double m = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        const QVector<double>& v = corrected ? samples.calibrated(axis) : samples.raw(axis);
        for (double value : v) m = std::max(m, std::abs(value));
    }
    return m;
}

// The three planes of the plots, as pairs of axes (0 x, 1 y, 2 z) in CalibPlot::_plane order.
constexpr int kPlaneAxes[3][2] = {{0, 1}, {0, 2}, {1, 2}};
const CalibPlot::_plane kPlanes[3] = {CalibPlot::XY, CalibPlot::XZ, CalibPlot::YZ};

// The status label has a style sheet, and a sheet's colours outrank the palette: the quality
// colour has to go into the sheet. Only a changed sheet is set, as each one re-polishes the label.
void colourStatusLabel(QLabel* label, const Style& style, const QColor& background) {
    const QString sheet =
        style.labelOnColour.arg(clr::toStr(background.toRgb())) + style.fontLabelMedium;
    if (label->styleSheet() != sheet) label->setStyleSheet(sheet);
    label->setAutoFillBackground(true);
}

}  // namespace

MagCalibDlg::MagCalibDlg(int serial, QWidget* parent)
    : QDialog(parent),
      ui(std::make_unique<Ui_MagCalibDlg>()),
      style(std::make_shared<Style>()),
      calibSession(static_cast<unsigned>(serial)) {
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

    // Errors reach the user after the constructor, once the dialog runs.
    connect(&calibSession, &CalibrationSession::cameraError, this, &MagCalibDlg::cameraError);
    connect(this, &MagCalibDlg::cameraError, this, &MagCalibDlg::onCameraError,
            Qt::QueuedConnection);
    connect(&calibSession, &CalibrationSession::calibrationFitted, this, &MagCalibDlg::updatePlots);
    connect(&calibSession, &CalibrationSession::samplesAdded, this, [this] { plotsBehind = true; });
    connect(&updateTimer, &QTimer::timeout, this, &MagCalibDlg::onUpdateTimer);

    // With the device open the grab thread starts; the session reports any failure itself.
    if (initOryxMcu()) (void)startAcquisition();
}

// The session ends the grab thread and closes the device.
MagCalibDlg::~MagCalibDlg() = default;

// ---- acquisition -------------------------------------------------------------------------

bool MagCalibDlg::startAcquisition() {
    if (calibSession.isGrabbing()) return true;
    if (!calibSession.startAcquisition()) return false;
    setPlotsAutoscale(true);
    updateTimer.start(kUpdatePeriodMs);
    return true;
}

void MagCalibDlg::stopAcquisition() {
    ui->pushButton_start->setChecked(false);
    ui->pushButton_start->setText(tr(" Continue Calibration"));
    ui->pushButton_start->setIcon(QIcon(QStringLiteral(":/images/play.png")));
    updateTimer.stop();
    calibSession.stopAcquisition();
}

bool MagCalibDlg::saveCalibData() {
    return calibSession.saveCalibData() == CalibrationSession::StoreResult::STORED;
}

// ---- buttons -----------------------------------------------------------------------------

void MagCalibDlg::on_pushButton_start_clicked(bool checked) {
    if (checked)
        startCalibrating();
    else
        stopCalibrating();
}

void MagCalibDlg::startCalibrating() {
    if (!startAcquisition()) {
        ui->pushButton_start->setChecked(false);
        calibSession.abandonCollecting();
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
    calibSession.startCollecting();
    ui->pushButton_save_calib->setEnabled(false);
    ui->pushButton_reset->setEnabled(false);
}

void MagCalibDlg::stopCalibrating() {
    showMessage(this, *style, QMessageBox::Information, tr("Calibration stopped"),
                tr("Press 'Store Calibration' to save the parameters on the camera and to "
                   "apply the new calibration."),
                {tr("Ok")});
    ui->pushButton_start->setText(tr(" Continue Calibration"));
    ui->pushButton_start->setIcon(QIcon(QStringLiteral(":/images/play.png")));
    calibSession.stopCollecting();
    scalePlots();
    ui->pushButton_save_calib->setEnabled(true);
    ui->pushButton_reset->setEnabled(true);
}

void MagCalibDlg::on_pushButton_clear_data_clicked() {
    if (!calibSession.isAcquiring()) ui->pushButton_start->setText(tr(" Start Calibration"));
    clearPlots();
    calibSession.discardCalibration();
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
    if (calibSession.hasCalibrationToStore()) {
        const int answer = showMessage(
            this, *style, QMessageBox::Question, tr("ORYX Magnetometer Calibration"),
            tr("Calibration parameters have not been saved on camera.\nClosing the window all "
               "the data will be lost.\nContinue?"),
            {tr("No"), tr("Yes")});
        if (answer != 1) return;
    }
    if (!calibSession.isClosed()) {
        stopAcquisition();
        calibSession.closeDevice();
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
    if (calibSession.isAcquiring()) {
        if (calibSession.refitIfDue()) showGuideEllipses();
        // Five scatter plots of thousands of points are costly to draw: only new samples are
        // worth it. A device that stops delivering leaves the dialog idle, not busy.
        if (plotsBehind) updatePlots();
    }
    showHeadings();
    showCalibrationStatus();
}

// The bounding ellipses of the raw clouds on the per-plane and mixed plots, and of the corrected
// cloud on the calibrated plot.
void MagCalibDlg::showGuideEllipses() {
    const MagSampleSet& samples = calibSession.samples();
    Range raw[3], corrected[3];
    for (int axis = 0; axis < 3; ++axis) {
        raw[axis] = rangeOf(samples.raw(axis));
        corrected[axis] = rangeOf(samples.calibrated(axis));
    }
    CalibPlot* perPlane[3] = {ui->widget_plot_XY, ui->widget_plot_XZ, ui->widget_plot_YZ};
    for (int p = 0; p < 3; ++p) {
        const int h = kPlaneAxes[p][0], v = kPlaneAxes[p][1];
        showBoundingEllipse(perPlane[p], kPlanes[p], raw[h], raw[v]);
        showBoundingEllipse(ui->widget_plot_mixed_raw, kPlanes[p], raw[h], raw[v]);
        showBoundingEllipse(ui->widget_plot_calibrated, kPlanes[p], corrected[h], corrected[v]);
    }
}

void MagCalibDlg::showHeadings() {
    const CalibrationSession::LiveReading& live = calibSession.reading();
    ui->label_heading_uncalib->setText(
        tr("Uncalibrated\n%1°").arg(live.headingUncalib, 6, 'f', 2, QChar(' ')));
    ui->label_heading_calib->setText(
        tr("Calibrated\n%1°").arg(live.headingCalib, 6, 'f', 2, QChar(' ')));
    ui->widget_raw_compass->setValue(live.headingUncalib);
    ui->widget_calib_compass->setValue(live.headingCalib);
}

void MagCalibDlg::showCalibrationStatus() {
    QLabel* label = ui->label_mag_calib_quality;
    if (calibSession.isAcquiring()) {
        label->setText(tr("CALIBRATING"));
        return;
    }
    if (calibSession.hasCalibrationToStore()) {
        label->setText(tr("CALIBRATION TO BE STORED"));
        return;
    }
    const CalibrationSession::LiveReading& live = calibSession.reading();
    label->setText(statusText(live.calibStatus));
    colourStatusLabel(
        label, *style,
        QColor::fromHsvF(std::clamp(live.calibQuality * 0.33, 0.0, 1.0), 0.75, 0.8, 1.0));
}

QString MagCalibDlg::statusText(int calibStatus) {
    switch (calibStatus) {
        case MAG_CALIB_GOOD:
            return tr("GOOD");
        case MAG_CALIB_OK:
            return tr("OK");
        case MAG_CALIB_NOT_GOOD:
            return tr("NOT GOOD");
        case MAG_CALIB_NONE:
            return tr("MAG. NOT CALIBRATED");
        default:
            return tr("NOT AVAILABLE");
    }
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
    const MagSampleSet& samples = calibSession.samples();
    for (int p = 0; p < 3; ++p) {
        const QVector<double>& h = samples.raw(kPlaneAxes[p][0]);
        const QVector<double>& v = samples.raw(kPlaneAxes[p][1]);
        curveRaw[p]->setSamples(h, v);
        curveMixedRaw[p]->setSamples(h, v);
        curveCalibrated[p]->setSamples(samples.calibrated(kPlaneAxes[p][0]),
                                       samples.calibrated(kPlaneAxes[p][1]));
        if (h.isEmpty())
            curveLastRaw[p]->setSamples(QVector<double>(), QVector<double>());
        else
            curveLastRaw[p]->setSamples(QVector<double>{h.last()}, QVector<double>{v.last()});
    }
    for (CalibPlot* plot : {ui->widget_plot_XY, ui->widget_plot_XZ, ui->widget_plot_YZ,
                            ui->widget_plot_mixed_raw, ui->widget_plot_calibrated})
        plot->replot();
    plotsBehind = false;
}

void MagCalibDlg::clearPlots() {
    calibSession.clearSamples();
    setPlotsAutoscale(true);
    updatePlots();
}

void MagCalibDlg::scalePlots() {
    const double rawLimit = largestAbs(calibSession.samples(), false) * 1.1;
    const double calLimit = largestAbs(calibSession.samples(), true) * 1.1;
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

// Nothing on the form depends on the state beyond what the slots set; an empty hook, kept as
// shipped.
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
