// The application's single window: lists the cameras, opens the chosen one, runs the sampling
// thread and the timers that redraw the views, and tears all of it down again when the camera
// goes away or the window closes.
#pragma once

#include <QDir>
#include <QLabel>
#include <QMainWindow>
#include <QVector>
#include <atomic>
#include <bw/sensors.hpp>
#include <cstdint>
#include <mutex>
#include <thread>

#include "DetectionThread.h"
#include "InputThreadModul.h"
#include "SampleIngest.h"
#include "SensorSamples.h"
#include "csvwriter.h"
#include "recoptions.h"

class QTimer;
class Style;

namespace Ui {
class MainWindow;
}

class MainWindow : public QMainWindow, private RowRecorder {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // For tests and the views: the sample state and the open camera.
    SensorSeries& sampleSeries() { return series; }
    const SensorLevels& sampleLevels() const { return levels; }
    std::mutex& sampleMutex() { return dataMutex; }
    InputThreadModul* input() const { return inputModule.load(); }
    bool isSampling() const { return dataThreadRunning.load(); }
    bool hasNoCamera() const { return noCamera.load(); }
    bool isDetecting() const { return detectTimer != nullptr; }
    Ui::MainWindow* form() const { return ui; }
    DetectionThread& detector() { return detectionThread; }
    int chartPeriodMs() const { return plotPeriodMs; }
    RecOptions& recordingOptions() { return recOptions; }
    const QLabel& freeSpaceLabel() const { return statusLabel; }
    QString recordingPath() const { return csvWriter.fileName(); }
    void setFreeSpace(double gigabytes, const QString& path);
    const QString& shownSensor() const { return currentSensorName; }

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
    void saveValues(int row);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Runs fn on the open camera's module, if any. The sampling thread may release the module
    // when the camera is lost; holding inputLifetime keeps it alive meanwhile.
    template <typename Fn>
    void withInput(Fn fn) {
        std::lock_guard<std::mutex> lock(inputLifetime);
        if (InputThreadModul* module = inputModule.load()) fn(*module);
    }

    void applyStyle();
    void createLiveInput();
    int openSelectedCamera();
    void startSensorViews(unsigned model);
    void restartDetection();
    void reset();
    void stopViewTimers();
    void discardTimer(QTimer*& timer);
    void stopSampling();
    void releaseInput();
    void connectSignals();
    void disconnectSignals();
    void displayDefaultValues();
    void initCharts();
    void changeSensor(const QString& name);
    void updateChartTimeSize();
    void feedChart(int imuStart);
    void selectSensor(const QString& name, const QString& typeText, const QString& topText);
    int updateDeviceList(bool keepCurrent);
    void dataThreadFunc();
    void stopRecording();
    void printDiskFreeSpace();
    // Rows of a recording, asked for by the sampling thread.
    bool isRecording() const override { return recording; }
    double rowsPerSecond() const override;
    void saveRow(int row) override;
    void showMessage(int icon, const QString& title, const QString& text);
    template <typename Slot>
    QTimer* makeTimer(int periodMs, Slot slot);

    Ui::MainWindow* ui = nullptr;
    QVector<std::uint32_t> deviceIds, deviceSerials, deviceModels;
    std::uint32_t selectedId = 0, selectedSerial = 0;
    QString selectedModelName;
    std::uint32_t selectedModel = 0;
    QTimer* imageTimer = nullptr;
    QTimer* detectTimer = nullptr;
    QTimer* plotTimer = nullptr;
    QTimer* displayTimer = nullptr;
    int plotPeriodMs = 15;
    int displayPeriodMs = 25;
    std::mutex dataMutex;
    std::atomic<InputThreadModul*> inputModule{nullptr};
    std::mutex inputLifetime;
    int inputGeneration = 0;  // which module's loss reports still count
    int imageFrameCount = 0;
    SensorSeries series;
    SensorLevels levels;
    bw::SensorsData sensorsData;
    double imuNominalRate = 400.0, magNominalRate = 50.0, baroNominalRate = 25.0;
    int imuPlotRate = 400, magPlotRate = 50, baroPlotRate = 25;
    int timeRange = 5;                                 // seconds shown by the chart
    QVector<double> plotTime, plotY0, plotY1, plotY2;  // what the last chart update handed over
    std::thread* dataThread = nullptr;
    std::atomic<bool> stopDataThread{true};
    std::atomic<bool> dataThreadRunning{false};
    std::atomic<bool> noCamera{true};
    bool detecting = false;
    bool openingCamera = false;  // createLiveInput is running (possibly inside a message box)
    Style* style = nullptr;
    QLabel statusLabel;
    std::atomic<bool> recording{false};
    CsvWriter csvWriter;
    QDir recordDir;
    QString currentSensorName = QStringLiteral("Accelerometer");
    RecOptions recOptions;
    int sensorRatePercent = 100;  // copied into the state store when a camera opens
    int streamQuality = 7;        // likewise
    DetectionThread detectionThread;
};
