// The chart: which sensor it shows, over how long a stretch of time, fed from the series.
#include <QTimer>

#include "ChartSamples.h"
#include "ChartSpan.h"
#include "DataPlot.h"
#include "FieldWidth.h"
#include "SensorReadout.h"
#include "mainwindow.h"
#include "style.h"
#include "ui_mainwindow.h"

namespace {

constexpr double kMarginWhenChosen = 1.1;
constexpr double kMarginWhenFed = 1.05;

}  // namespace

void MainWindow::initCharts() {
    session.clearSeries();
    DataPlot* plot = ui->widget_chart;
    plot->setAutoReplot(false);
    for (int i = 0; i < DataPlot::curveCount; ++i)
        plot->updateData(static_cast<DataPlot::DataType>(i), {}, {}, false);
    plot->replot();
    changeSensor(std::nullopt);
}

QString MainWindow::shownSensor() const {
    return shown ? QString::fromLatin1(sensorInfo(*shown).labels.name) : QString();
}

// Without a sensor the plot keeps its type and the fields show the accelerometer in their
// default colours.
void MainWindow::changeSensor(std::optional<Sensor> sensor) {
    shown = sensor;
    QLineEdit* fields[3] = {ui->lineEdit_value_0, ui->lineEdit_value_1, ui->lineEdit_value_2};
    QString Style::*const defaultStyles[3] = {&Style::valueX, &Style::valueY, &Style::valueZ};
    const SensorInfo* info = sensor ? &sensorInfo(*sensor) : nullptr;
    bool used[3];
    for (int i = 0; i < 3; ++i) {
        QString Style::*const sheet = info ? info->readout.styles[i] : defaultStyles[i];
        used[i] = sheet != nullptr;
        if (used[i])
            fields[i]->setStyleSheet(style->*sheet);
        else
            fields[i]->hide();
    }
    // Showing a field lays the window out at once: with the widths of the sensor before, the
    // window would grow for good.
    fitReadoutFields(sensor.value_or(Sensor::ACCELEROMETER));
    for (int i = 0; i < 3; ++i)
        if (used[i]) fields[i]->show();
    ui->pushButton_calib_mag->setVisible(sensor == Sensor::MAGNETOMETER);
    if (info) {
        ui->widget_chart->setSensorType(info->chart.plotType);
        setValueAxis(*info, kMarginWhenChosen);
    }
    updateChartTimeSize();
}

// The fields of a sensor keep room for the widest texts it can show, so that no reading is cut
// at any size the window allows: the layout's minimum, and with it the window's, follows. All of
// a sensor's fields are as wide as its widest, which keeps the row even.
void MainWindow::fitReadoutFields(Sensor sensor) {
    QLineEdit* fields[3] = {ui->lineEdit_value_0, ui->lineEdit_value_1, ui->lineEdit_value_2};
    fields[0]->ensurePolished();  // the style sheet's font
    const int width =
        std::max(readoutFieldFloor, widthShowingWhole(*fields[0], rangeEndTexts(sensor)));
    for (QLineEdit* field : fields) field->setMinimumWidth(width);
}

// Symmetric sensors get the margin around their largest reading; the others span their running
// minimum and maximum as they are.
void MainWindow::setValueAxis(const SensorInfo& info, double margin) {
    const SensorLevels& levels = session.levels();
    if (info.axis.largest != nullptr) {
        const double range = margin * (levels.*info.axis.largest).load();
        ui->widget_chart->setValRange(-range, range, false);
    } else {
        ui->widget_chart->setValRange((levels.*info.axis.minimum).load(),
                                      (levels.*info.axis.maximum).load(), false);
    }
}

void MainWindow::updateChartTimeSize() {
    const QVariant seconds = ui->comboBox_time_range->currentData();
    if (seconds.isValid()) timeRange = seconds.toInt();
}

void MainWindow::on_comboBox_time_range_currentIndexChanged(const QString&) {
    updateChartTimeSize();
}

void MainWindow::updatePlot() {
    std::lock_guard<std::mutex> lock(session.seriesMutex());
    const SensorSeries& series = session.series();
    DataPlot* plot = ui->widget_chart;
    plot->setAutoReplot(false);
    if (series.imuTime.isEmpty()) return;
    plotTimer->stop();

    const int imuRate = sensorInfo(Sensor::ACCELEROMETER).chart.nominalRate;
    const RowNumber start =
        chart::imuStartRow(series.imuTime.firstRow(), series.imuTime.endRow(), timeRange, imuRate);
    const int period = chart::refreshPeriodMs(series.imuTime.endRow() - start);
    if (period != plotPeriodMs) {
        plotPeriodMs = period;
        plotTimer->setInterval(plotPeriodMs);
    }
    feedChart(shown.value_or(Sensor::ACCELEROMETER), start);
    plot->replot();
    plotTimer->start();
}

// Hands the chart the newest stretch of the sensor's series; the caller holds the series lock.
// The curves read the rows in place, also when they are drawn later, without the lock.
void MainWindow::feedChart(Sensor sensor, RowNumber imuStart) {
    const SensorSeries& series = session.series();
    const SensorInfo& info = sensorInfo(sensor);
    const SensorChart& chart = info.chart;

    const SampleColumn* time = &series.imuTime;
    const std::array<Series, 3>* curves = &chart.curves;
    RowNumber start = imuStart;
    int rate = chart.nominalRate;
    switch (chart.timeBase) {
        case TimeBase::IMU:
            break;
        case TimeBase::MAGNETOMETER:
            time = &series.magSampleTime;
            break;
        case TimeBase::BAROMETER:
            time = &series.baroSampleTime;
            break;
        case TimeBase::TEMPERATURE:
            // Cameras without barometer samples read their temperatures with every IMU sample.
            if (series.baroSampleTime.isEmpty()) {
                time = &series.tempFallbackTime;
                curves = &chart.fallbackCurves;
                rate = sensorInfo(Sensor::ACCELEROMETER).chart.nominalRate;
            } else {
                time = &series.baroSampleTime;
            }
            break;
    }
    if (chart.timeBase != TimeBase::IMU)
        start = chart::eventStartRow(time->firstRow(), time->endRow(), timeRange, rate);

    const ColumnSlice times = time->slice(start);
    DataPlot* plot = ui->widget_chart;
    for (int i = 0; i < 3 && (*curves)[i] != nullptr; ++i) {
        plot->setCurveData(static_cast<DataPlot::DataType>(chart.firstCurve + i),
                           new ChartSamples(times, (series.*(*curves)[i]).slice(start)), false);
    }
    // Also handed to the hidden left-temperature curve; the next temperature update replaces it.
    if (sensor == Sensor::BAROMETER) {
        plot->setCurveData(DataPlot::TEMP_LEFT,
                           new ChartSamples(times, (series.*chart.curves[0]).slice(start)), false);
    }
    setValueAxis(info, kMarginWhenFed);
    chart::TimeAxis axis;
    if (!times.isEmpty())
        axis =
            chart::timeAxisFor(times.at(times.firstRow()), times.at(times.endRow() - 1), timeRange);
    plot->setTimeRange(axis.min, axis.max, false);
}
