#pragma once

// The modal magnetometer calibration dialog of the ORYX_C / ORYX_D cameras. Its session opens the
// camera's sensor micro-controller itself (the caller must have released the camera), reads raw
// magnetometer samples on a grab thread, fits an axis-aligned ellipsoid to them while the user
// turns the camera, and stores the calibration in the camera's EEPROM. The dialog drives the
// session from its buttons and shows raw and corrected samples, headings and the device's verdict
// from a 100 ms timer.

#include <QDialog>
#include <QString>
#include <QTimer>
#include <memory>

#include "CalibrationSession.h"

class CalibPlot;
class QKeyEvent;
class QwtPlotCurve;
class QwtSymbol;
class Style;
class Ui_MagCalibDlg;

class MagCalibDlg : public QDialog {
    Q_OBJECT

public:
    MagCalibDlg(int serial, QWidget* parent = nullptr);
    ~MagCalibDlg() override;

    // The device, the samples and the fit behind the dialog, for callers that watch it.
    const CalibrationSession& session() const { return calibSession; }

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
    bool initOryxMcu() { return calibSession.initOryxMcu(); }
    bool startAcquisition();
    void stopAcquisition();
    void calibrateData() { calibSession.calibrateData(); }
    bool saveCalibData();
    void startCalibrating();
    void stopCalibrating();
    void initPlots();
    void clearPlots();
    void updatePlots();
    void scalePlots();
    void setPlotsAutoscale(bool on);
    void showGuideEllipses();
    void showHeadings();
    void showCalibrationStatus();
    // The device's verdict on its stored calibration, as the status label says it.
    static QString statusText(int calibStatus);
    void updateForms();
    void setBwStyleSheet();
    void showStoreError(int icon);

    std::unique_ptr<Ui_MagCalibDlg> ui;
    std::shared_ptr<Style> style;
    CalibrationSession calibSession;
    bool plotsBehind = false;  // samples arrived since the plots were last drawn

    // Markers of the twelve scatter curves; each curve owns its symbol once it has it.
    QwtSymbol* symbols[12] = {};
    // Curves, owned by their plots: the per-plane raw clouds and last samples, the three raw
    // clouds of the mixed plot and the three calibrated clouds.
    QwtPlotCurve* curveRaw[3] = {};
    QwtPlotCurve* curveLastRaw[3] = {};
    QwtPlotCurve* curveMixedRaw[3] = {};
    QwtPlotCurve* curveCalibrated[3] = {};

    QTimer updateTimer;
};
