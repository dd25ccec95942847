// The application's single window: lists the cameras, opens the chosen one through the camera
// session, and drives the timers that redraw the chart, the readout and the orientation view.
// What lives as long as the open camera (input module, sampling thread, sample series) belongs
// to the session; the window is the glue between it and the widgets.
#pragma once

#include <QDir>
#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QVector>
#include <atomic>
#include <bw/sensors.hpp>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

#include "DetectionThread.h"
#include "ElidingLabel.h"
#include "LiveCameraSession.h"
#include "SampleIngest.h"
#include "SensorSamples.h"
#include "SensorTable.h"
#include "csvwriter.h"
#include "recoptions.h"

class ImuNoiseWindow;
class InputThreadModul;
class QDragEnterEvent;
class QDropEvent;
class QTimer;
class ReplayBar;
class Style;

namespace Ui {
class MainWindow;
}

class MainWindow : public QMainWindow, private RowRecorder {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // For tests, tools and benchmarks: the open camera and its samples.
    LiveCameraSession& cameraSession() { return session; }
    InputThreadModul* input() const { return session.input(); }
    bool isSampling() const { return session.isSampling(); }
    bool hasNoCamera() const { return noCamera || session.isLost(); }
    SensorSeries& sampleSeries() { return session.series(); }
    const SensorLevels& sampleLevels() const { return session.levels(); }
    std::mutex& sampleMutex() { return session.seriesMutex(); }
    bool isDetecting() const { return detectTimer != nullptr; }
    Ui::MainWindow* form() const { return ui; }
    DetectionThread& detector() { return detectionThread; }
    int chartPeriodMs() const { return plotPeriodMs; }
    RecOptions& recordingOptions() { return recOptions; }
    const QLabel& freeSpaceLabel() const { return statusLabel; }
    QString recordingPath() const { return csvWriter.fileName(); }
    void setFreeSpace(double gigabytes, const QString& path);
    // The name of the sensor shown ("Accelerometer", ...), empty before one is chosen.
    QString shownSensor() const;
    // Recordings to replay, listed before the cameras; the first opens when nothing is open.
    void openRecordings(const QStringList& paths);
    ReplayBar* replayControls() const { return replayBar; }
    // The IMU noise window of the replayed recording; null until the replay bar asks for it.
    ImuNoiseWindow* imuNoise() const;

public slots:
    void setContext();
    void cameraDisconnected();
    int detectMultipleDevice();
    void updateImages();
    void updatePlot();
    void updateDataDisplay();

    void on_comboBox_camera_list_currentIndexChanged(int index);
    void on_pushButton_refresh_list_clicked();
    void on_pushButton_accel_clicked(bool checked);
    void on_pushButton_gyro_clicked(bool checked);
    void on_pushButton_mag_clicked(bool checked);
    void on_pushButton_orient_clicked(bool checked);
    void on_pushButton_baro_clicked(bool checked);
    void on_pushButton_temper_clicked(bool checked);
    void on_comboBox_time_range_currentIndexChanged(const QString& text);
    void on_pushButton_rec_option_clicked();
    void on_pushButton_calib_mag_clicked();
    void on_toolButton_save_clicked(bool checked);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Opening and closing the camera.
    void createLiveInput();
    void resetCameraStates();
    void fillTimeRanges();
    void warnAboutOldFirmware();
    void startSensorViews(const ModelInfo& model);
    void showEmptyChart();
    void restartDetection();
    void reset();
    void connectSignals();
    void disconnectSignals();
    void displayDefaultValues();

    // Timers; each is created when needed and discarded rather than stopped.
    template <typename Slot>
    QTimer* makeTimer(int periodMs, Slot slot);
    void discardTimer(QTimer*& timer);
    void startViewTimers();
    void stopViewTimers();

    // Camera list.
    int updateDeviceList(bool keepCurrent);
    void listCamera(const LiveCameraSession::Camera& camera, const QString& modelName);
    void listRecording(const QString& path);

    // Replay of a recording.
    void placeReplayBar();
    void connectReplayBar();
    void showReplayState();
    void showReplayPosition();
    void showImuNoise();
    void refuseRecording(const QString& path);
    void tellIfCutShort(const QString& path);
    void endUnreadableReplay(const QString& path);
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    // Chart and readout.
    void applyStyle();
    void initCharts();
    void selectSensor(Sensor sensor);
    void changeSensor(std::optional<Sensor> sensor);
    void fitReadoutFields(Sensor sensor);
    void setValueAxis(const SensorInfo& info, double margin);
    void updateChartTimeSize();
    void feedChart(Sensor sensor, RowNumber imuStart);
    void showReadout(Sensor sensor);

    // Recording. The sampling thread asks whether and which rows to write.
    void stopRecording();
    void printDiskFreeSpace();
    bool isRecording() const override { return recording; }
    double rowsPerSecond() const override;
    void saveRow(RowNumber row, const bw::SensorsData& latest) override;
    void saveValues(RowNumber row, const bw::SensorsData& latest);
    // On the GUI thread, after a row could not be written to `path`.
    void recordingFailed(const QString& path, const QString& reason);

    void showMessage(int icon, const QString& title, const QString& text);

    Ui::MainWindow* ui = nullptr;
    Style* style = nullptr;

    QTimer* imageTimer = nullptr;
    QTimer* detectTimer = nullptr;
    QTimer* plotTimer = nullptr;
    QTimer* displayTimer = nullptr;
    int plotPeriodMs = 15;
    int displayPeriodMs = 25;

    // One entry per item of the camera list, and the camera being opened.
    QVector<LiveCameraSession::Camera> listedCameras;
    LiveCameraSession::Camera selected;
    QString selectedModelName;
    QStringList recordings;                   // given on the command line or dropped, newest first
    QStringList refusedRecordings;            // not listed again
    QStringList toldCutShort;                 // opened before: the user knows if they end damaged
    ReplayBar* replayBar = nullptr;           // shown while a recording is open
    QPointer<ImuNoiseWindow> imuNoiseWindow;  // a top-level child, of the last recording asked
    bw::Timestamp replayStartNs = 0;          // recorded time of the first frame
    bool detecting = false;                   // the camera list is being rebuilt
    bool noCamera = true;                     // searching for cameras
    bool openingCamera = false;  // createLiveInput is running, possibly inside a message box
    DetectionThread detectionThread;
    LiveCameraSession session{detectionThread.mutex()};

    std::optional<Sensor> shown;  // none until a sensor is chosen; drawn as the accelerometer
    int readoutFieldFloor = 0;    // the form's minimum width of a read-out field
    int timeRange = 5;            // seconds shown by the chart
    std::chrono::steady_clock::time_point lastDisplayUpdate;
    int imageFrameCount = 0;
    // Cameras without motion sensors: the image clock's first reading is the time origin.
    std::optional<bw::Timestamp> imageTimeOriginUs;

    std::atomic<bool> recording{false};
    CsvWriter csvWriter;
    QDir recordDir;
    RecOptions recOptions;
    ElidingLabel statusLabel;
    int sensorRatePercent = 100;  // copied into the state store when a camera opens
    int streamQuality = 7;        // likewise
};
