// The "IMU Noise" window: the Allan deviation of a recording's gyroscope and accelerometer axes,
// a table of the noise terms, and their export for Kalibr and as CSV. The analysis runs on a
// thread of its own; the window polls its progress and end, and can cancel it.
#pragma once

#include <QWidget>
#include <memory>

#include "BackgroundAnalysis.h"

class AdevPlot;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableWidget;
class QTimer;

class ImuNoiseWindow : public QWidget {
    Q_OBJECT

public:
    // Starts analysing the recording at once, with `analysis` (the library's unless a test
    // wants to hold it back).
    explicit ImuNoiseWindow(
        const QString& recordingPath, QWidget* parent = nullptr,
        imunoise::BackgroundAnalysis::Analysis analysis = imunoise::analyseRecording);
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
    void applyStyle();
    void fitTableHeight();
    QWidget* buildStatusRow();
    QWidget* buildTable();
    QWidget* buildButtons();
    void pollAnalysis();
    void showReport();
    void fillTable();
    void askKalibrPath();
    void askCurvesPath();
    void reportError(const QString& text);

    QString path;
    imunoise::BackgroundAnalysis::Analysis analysisToRun;
    std::unique_ptr<imunoise::BackgroundAnalysis> running;  // null once its report is shown
    imunoise::NoiseReport report;
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
