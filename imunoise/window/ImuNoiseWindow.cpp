#include "ImuNoiseWindow.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "AdevPlot.h"
#include "CssValues.h"
#include "NoiseExport.h"
#include "messagebox.h"
#include "style.h"

using imunoise::ImuAxis;
using imunoise::NoiseReport;
using imunoise::Sensor;

namespace {

constexpr int kProgressTickMs = 100;
constexpr const char* kRostopic = "/imu0";

enum TableColumn { NOISE_DENSITY, RANDOM_WALK, BIAS_INSTABILITY, COLUMN_COUNT };

QString value(double number, std::string_view unit) {
    return QStringLiteral("%1 %2")
        .arg(number, 0, 'e', 3)
        .arg(QString::fromUtf8(unit.data(), int(unit.size())));
}

QString axisTitle(ImuAxis axis) {
    const QString letter = QStringLiteral("XYZ").mid(imunoise::componentOf(axis), 1);
    return imunoise::sensorOf(axis) == Sensor::GYROSCOPE
               ? QCoreApplication::translate("ImuNoiseWindow", "Gyro %1").arg(letter)
               : QCoreApplication::translate("ImuNoiseWindow", "Accel %1").arg(letter);
}

QString regionText(const imunoise::LineFit& line) {
    return QCoreApplication::translate("ImuNoiseWindow", "fitted for τ from %1 s to %2 s, ±%3 %")
        .arg(line.tauFrom, 0, 'g', 3)
        .arg(line.tauTo, 0, 'g', 3)
        .arg(100.0 * line.relativeError, 0, 'f', 1);
}

}  // namespace

ImuNoiseWindow::ImuNoiseWindow(const QString& recordingPath, QWidget* parent,
                               imunoise::BackgroundAnalysis::Analysis analysis)
    : QWidget(parent, Qt::Window),
      path(recordingPath),
      analysisToRun(std::move(analysis)),
      progressTimer(new QTimer(this)) {
    setObjectName(QStringLiteral("imuNoiseWindow"));
    setWindowTitle(tr("IMU Noise - %1").arg(QFileInfo(path).fileName()));
    setAttribute(Qt::WA_DeleteOnClose, false);
    buildLayout();
    applyStyle();
    connect(progressTimer, &QTimer::timeout, this, &ImuNoiseWindow::pollAnalysis);
    resize(1100, 760);
    analyse();
}

// The analysis, if one runs, is cancelled and joined by its own destructor.
ImuNoiseWindow::~ImuNoiseWindow() = default;

bool ImuNoiseWindow::isAnalysing() const { return running != nullptr; }

void ImuNoiseWindow::buildLayout() {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildStatusRow());
    auto* plots = new QHBoxLayout();
    gyroPlot = new AdevPlot(Sensor::GYROSCOPE, this);
    gyroPlot->setObjectName(QStringLiteral("gyroscopePlot"));
    accPlot = new AdevPlot(Sensor::ACCELEROMETER, this);
    accPlot->setObjectName(QStringLiteral("accelerometerPlot"));
    plots->addWidget(gyroPlot);
    plots->addWidget(accPlot);
    layout->addLayout(plots, 1);
    layout->addWidget(buildTable());
    notes = new QLabel(this);
    notes->setObjectName(QStringLiteral("notes"));
    notes->setWordWrap(true);
    layout->addWidget(notes);
    layout->addWidget(buildButtons());
}

// The application's dark look, from the sheets every window takes.
void ImuNoiseWindow::applyStyle() {
    const Style style;
    setStyleSheet(style.baseWindow);
    setFont(cssFont(style.fontText));
    table->setStyleSheet(style.table);
    fitTableHeight();
    progress->setStyleSheet(style.progressBar);
    // The outlined sheet has no padding of its own: the text gets a margin either side.
    for (QPushButton* button : {cancelButton, againButton, kalibrButton, curvesButton}) {
        button->setStyleSheet(style.outlineButton);
        button->ensurePolished();
        const QFontMetrics metrics(button->font());
        button->setMinimumSize(metrics.horizontalAdvance(button->text()) + 2 * metrics.height(),
                               metrics.height() + 10);
    }
}

QWidget* ImuNoiseWindow::buildStatusRow() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    status = new QLabel(row);
    status->setObjectName(QStringLiteral("status"));
    status->setWordWrap(true);
    progress = new QProgressBar(row);
    progress->setRange(0, 1000);
    progress->setTextVisible(false);
    cancelButton = new QPushButton(tr("Cancel"), row);
    cancelButton->setObjectName(QStringLiteral("cancelButton"));
    againButton = new QPushButton(tr("Analyse again"), row);
    againButton->setObjectName(QStringLiteral("againButton"));
    connect(cancelButton, &QPushButton::clicked, this, &ImuNoiseWindow::cancel);
    connect(againButton, &QPushButton::clicked, this, &ImuNoiseWindow::analyse);
    layout->addWidget(status, 1);
    layout->addWidget(progress);
    layout->addWidget(cancelButton);
    layout->addWidget(againButton);
    return row;
}

QWidget* ImuNoiseWindow::buildTable() {
    table = new QTableWidget(imunoise::kAxisCount, COLUMN_COUNT, this);
    table->setObjectName(QStringLiteral("noiseTable"));
    table->setHorizontalHeaderLabels(
        {tr("Noise density N"), tr("Random walk K"), tr("Bias instability (at τ)")});
    QStringList rows;
    for (const ImuAxis axis : imunoise::kAxes) rows << axisTitle(axis);
    table->setVerticalHeaderLabels(rows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return table;
}

// Every row shows, without a scroll bar: the height of the headers and rows as the table's style
// sheet pads them, so it is measured once the sheet applies.
void ImuNoiseWindow::fitTableHeight() {
    for (QWidget* part :
         {static_cast<QWidget*>(table), static_cast<QWidget*>(table->horizontalHeader()),
          static_cast<QWidget*>(table->verticalHeader())})
        part->ensurePolished();
    int height = table->horizontalHeader()->sizeHint().height() + 2 * table->frameWidth();
    for (int row = 0; row < table->rowCount(); ++row)
        height += table->verticalHeader()->sectionSizeHint(row);
    table->setFixedHeight(height);
}

QWidget* ImuNoiseWindow::buildButtons() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    kalibrButton = new QPushButton(tr("Export for Kalibr…"), row);
    kalibrButton->setObjectName(QStringLiteral("kalibrButton"));
    curvesButton = new QPushButton(tr("Export curves…"), row);
    curvesButton->setObjectName(QStringLiteral("curvesButton"));
    connect(kalibrButton, &QPushButton::clicked, this, &ImuNoiseWindow::askKalibrPath);
    connect(curvesButton, &QPushButton::clicked, this, &ImuNoiseWindow::askCurvesPath);
    layout->addStretch(1);
    layout->addWidget(kalibrButton);
    layout->addWidget(curvesButton);
    return row;
}

void ImuNoiseWindow::analyse() {
    if (running) return;
    report = NoiseReport();
    gyroPlot->showReport(report);
    accPlot->showReport(report);
    fillTable();
    notes->clear();
    status->setText(tr("Analysing %1…").arg(QFileInfo(path).fileName()));
    progress->setValue(0);
    progress->show();
    cancelButton->show();
    againButton->hide();
    kalibrButton->setEnabled(false);
    curvesButton->setEnabled(false);
    running = std::make_unique<imunoise::BackgroundAnalysis>(path.toStdString(), analysisToRun);
    progressTimer->start(kProgressTickMs);
}

void ImuNoiseWindow::cancel() {
    if (running) running->cancel();
}

void ImuNoiseWindow::pollAnalysis() {
    if (!running) return;
    progress->setValue(static_cast<int>(running->progress() * 1000.0));
    if (running->finished()) showReport();
}

void ImuNoiseWindow::showReport() {
    progressTimer->stop();
    report = running->takeReport();
    running.reset();
    progress->hide();
    cancelButton->hide();
    againButton->show();
    if (report.cancelled) {
        status->setText(tr("Cancelled."));
    } else if (!report.analysed()) {
        status->setText(tr("This recording cannot be analysed: %1")
                            .arg(QString::fromStdString(report.refusal)));
    } else {
        status->setText(tr("%1 samples at %2 Hz over %3 min.")
                            .arg(report.samples)
                            .arg(report.rateHz, 0, 'f', 1)
                            .arg(report.durationS / 60.0, 0, 'f', 1));
        QStringList warnings;
        for (const std::string& warning : report.warnings)
            warnings << QString::fromStdString(warning);
        notes->setText(warnings.join(QLatin1Char('\n')));
    }
    gyroPlot->showReport(report);
    accPlot->showReport(report);
    fillTable();
    kalibrButton->setEnabled(report.analysed());
    curvesButton->setEnabled(report.analysed());
    emit analysisEnded();
}

void ImuNoiseWindow::fillTable() {
    for (const ImuAxis axis : imunoise::kAxes) {
        const int row = static_cast<int>(imunoise::indexOf(axis));
        const imunoise::AxisResult& result = report[axis];
        const Sensor sensor = imunoise::sensorOf(axis);
        QString texts[COLUMN_COUNT] = {QStringLiteral("–"), QStringLiteral("–"),
                                       QStringLiteral("–")};
        QString tips[COLUMN_COUNT];
        if (result.noise.white) {
            texts[NOISE_DENSITY] =
                value(result.noise.white->value, imunoise::noiseDensityUnit(sensor));
            tips[NOISE_DENSITY] = regionText(*result.noise.white);
        }
        if (result.noise.walk) {
            texts[RANDOM_WALK] = value(result.noise.walk->value, imunoise::randomWalkUnit(sensor));
            tips[RANDOM_WALK] = regionText(*result.noise.walk);
        }
        if (const auto& bias = result.noise.instability) {
            texts[BIAS_INSTABILITY] = tr("%1 (%2 s)")
                                          .arg(value(bias->value, imunoise::rateUnit(sensor)))
                                          .arg(bias->tau, 0, 'g', 3);
            if (bias->atEnd)
                tips[BIAS_INSTABILITY] = tr("The curve still falls at its end: a bound only.");
        }
        for (int column = 0; column < COLUMN_COUNT; ++column) {
            auto* item = new QTableWidgetItem(texts[column]);
            item->setToolTip(tips[column]);
            table->setItem(row, column, item);
        }
    }
}

bool ImuNoiseWindow::exportKalibr(const QString& filePath) {
    std::string refusal;
    const std::string yaml = imunoise::kalibrYaml(report, kRostopic, refusal);
    if (yaml.empty()) {
        reportError(QString::fromStdString(refusal));
        return false;
    }
    std::string error;
    if (!imunoise::writeTextFile(filePath.toStdString(), yaml, error)) {
        reportError(QString::fromStdString(error));
        return false;
    }
    return true;
}

bool ImuNoiseWindow::exportCurves(const QString& filePath) {
    std::string error;
    if (!imunoise::writeTextFile(filePath.toStdString(), imunoise::curvesCsv(report), error)) {
        reportError(QString::fromStdString(error));
        return false;
    }
    return true;
}

void ImuNoiseWindow::askKalibrPath() {
    const QString chosen = QFileDialog::getSaveFileName(
        this, tr("Export for Kalibr"), QFileInfo(path).dir().filePath(QStringLiteral("imu.yaml")),
        tr("YAML files (*.yaml)"));
    if (!chosen.isEmpty()) exportKalibr(chosen);
}

void ImuNoiseWindow::askCurvesPath() {
    const QString chosen = QFileDialog::getSaveFileName(
        this, tr("Export curves"),
        QFileInfo(path).dir().filePath(QFileInfo(path).completeBaseName() +
                                       QStringLiteral("-adev.csv")),
        tr("CSV files (*.csv)"));
    if (!chosen.isEmpty()) exportCurves(chosen);
}

void ImuNoiseWindow::reportError(const QString& text) {
    const Style style;
    showMessage(this, style, QMessageBox::Warning, tr("File error"), text);
}
