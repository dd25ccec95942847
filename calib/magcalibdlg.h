#pragma once

// The modal magnetometer calibration dialog of the ORYX_C / ORYX_D cameras. It opens the
// camera's sensor micro-controller itself (the caller must have released the camera), reads raw
// magnetometer samples on a grab thread, fits an axis-aligned ellipsoid to them while the user
// turns the camera, shows raw and corrected samples and headings, and stores the calibration in
// the camera's EEPROM.

#include <QDialog>
#include <QString>
#include <QTimer>
#include <QVector>
#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

class QKeyEvent;
class QwtPlotCurve;
class QwtSymbol;
class OrientCount;
class Style;
class Ui_MagCalibDlg;

namespace bw {
class ORYXmcu;
}

class MagCalibDlg : public QDialog {
    Q_OBJECT

public:
    MagCalibDlg(int serial, QWidget* parent = nullptr);
    ~MagCalibDlg() override;

    // For tests and callers that watch the dialog.
    int rawSampleCount() const;
    int calibratedSampleCount() const;
    bool isGrabbing() const { return threadRunning.load(); }
    bool isAcquiring() const { return acquiring.load(); }
    bool hasCalibrationToStore() const { return calibToStore; }
    int lastRefitCount() const { return lastCalibCount; }
    void currentCalibration(double offsetOut[3], double scaleOut[3]) const;

signals:
    void cameraError(QString message);

public slots:
    void on_pushButton_start_clicked(bool checked);
    void on_pushButton_clear_data_clicked();
    void on_pushButton_save_calib_clicked();
    void on_pushButton_reset_clicked();
    void on_pushButton_exit_clicked();
    void onUpdateTimer();
    void onCameraError(QString message);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool initOryxMcu();
    void updateBwDevList();
    bool startAcquisition();
    void stopAcquisition();
    void magDataGrabThread(std::shared_ptr<bw::ORYXmcu> device);
    void calibrateData();  // sampleMutex held by the caller
    bool loadCalibData();
    bool saveCalibData();
    void initPlots();
    void clearPlots();
    void updatePlots();  // sampleMutex held by the caller
    void scalePlots();
    void setPlotsAutoscale(bool on);
    void updateForms();
    void setBwStyleSheet();
    void showStoreError(int icon);

    std::unique_ptr<Ui_MagCalibDlg> ui;
    std::shared_ptr<Style> style;
    int lastCalibCount = 0;
    int serial = 0;
    double offset[3] = {0.0, 0.0, 0.0};
    double scale[3] = {1.0, 1.0, 1.0};
    // Written by the grab thread, read by the user interface thread.
    std::atomic<double> headingUncalib{0.0};
    std::atomic<double> headingCalib{0.0};
    std::atomic<int> calibStatus{4};
    std::atomic<float> calibQuality{0.f};
    std::atomic<double> sampleRate{0.0};
    // Guarded by sampleMutex.
    QVector<double> rawX, rawY, rawZ;
    QVector<double> calX, calY, calZ;
    int plottedSampleCount = 0;  // raw samples on the plots as last drawn

    // Markers of the twelve scatter curves; each curve owns its symbol once it has it.
    QwtSymbol* symbols[12] = {};
    // Curves, owned by their plots: the per-plane raw clouds and last samples, the three raw
    // clouds of the mixed plot and the three calibrated clouds.
    QwtPlotCurve* curveRaw[3] = {};
    QwtPlotCurve* curveLastRaw[3] = {};
    QwtPlotCurve* curveMixedRaw[3] = {};
    QwtPlotCurve* curveCalibrated[3] = {};

    std::shared_ptr<bw::ORYXmcu> mcu;
    QVector<QString> devFirmware;
    QVector<QString> devSerials;
    QVector<unsigned short> devProductIds;

    std::thread grabThread;
    mutable std::mutex sampleMutex;
    bool mcuClosed = false;
    std::atomic<bool> threadRunning{false};
    std::atomic<bool> stopRequested{false};
    std::atomic<bool> acquiring{false};
    bool calibToStore = false;
    QTimer updateTimer;
    std::shared_ptr<OrientCount> orientCount;  // replaced by the grab thread under sampleMutex
};

