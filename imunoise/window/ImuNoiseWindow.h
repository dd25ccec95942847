// The "IMU Noise" window: the Allan deviation of a recording's gyroscope and accelerometer axes,
// a table of the noise terms, and their export for Kalibr and as CSV. The analysis runs on a
// worker thread; the window shows its progress and can cancel it.
#pragma once

#include <QFutureWatcher>
#include <QWidget>
#include <atomic>
#include <memory>

#include "NoiseAnalysis.h"

class AdevPlot;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableWidget;
class QTimer;

class ImuNoiseWindow : public QWidget {
    Q_OBJECT

public:
    explicit ImuNoiseWindow(const QString& recordingPath, QWidget* parent = nullptr);
    ~ImuNoiseWindow() override;

    const QString& recordingPath() const { return path; }
    bool isAnalysing() const;

public slots:
    // Starts the analysis again (after a cancel or a refusal).
    void analyse();
    void cancel();
    // Write the files; a failure is reported in a message box. True when written.
    bool exportKalibr(const QString& filePath);
    bool exportCurves(const QString& filePath);

signals:
    // The analysis ended: finished, refused or cancelled.
    void analysisEnded();

private:
    void buildLayout();
    QWidget* buildStatusRow();
    QWidget* buildTable();
    QWidget* buildButtons();
    void showProgress();
    void showReport();
    void fillTable();
    void askKalibrPath();
    void askCurvesPath();
    void reportError(const QString& text);

    QString path;
    imunoise::NoiseReport report;
    QFutureWatcher<imunoise::NoiseReport> watcher;
    std::shared_ptr<std::atomic<bool>> cancelFlag;
    std::shared_ptr<std::atomic<int>> progressPermille;
    QTimer* progressTimer;
    QLabel* status;
    QProgressBar* progress;
    QPushButton* cancelButton;
    QPushButton* againButton;
    AdevPlot* gyroPlot;
    AdevPlot* accPlot;
    QTableWidget* table;
    QLabel* notes;
    QPushButton* kalibrButton;
    QPushButton* curvesButton;
};
