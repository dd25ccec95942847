// The chart: which sensor it shows, over how long a stretch of time, fed from the series.
#include <QTimer>

#include "ChartWindow.h"
#include "DataPlot.h"
#include "mainwindow.h"
#include "style.h"
#include "ui_mainwindow.h"

namespace {

QVector<double> tail(const QVector<double>& series, int start) { return series.mid(start); }

}  // namespace

void MainWindow::initCharts() {
    {
        std::lock_guard<std::mutex> lock(dataMutex);
        series.clear();
        series.reserve(24000);
    }
    DataPlot* plot = ui->widget_chart;
    plot->setAutoReplot(false);
    for (int i = 0; i < DataPlot::curveCount; ++i)
        plot->updateData(static_cast<DataPlot::DataType>(i), {}, {}, false);
    plot->replot();
    changeSensor(QString());
}

void MainWindow::changeSensor(const QString& name) {
    currentSensorName = name;
    ui->lineEdit_value_0->setStyleSheet(style->valueX);
    ui->lineEdit_value_1->show();
    ui->lineEdit_value_1->setStyleSheet(style->valueY);
    ui->lineEdit_value_2->show();
    ui->lineEdit_value_2->setStyleSheet(style->valueZ);
    ui->pushButton_calib_mag->hide();
    DataPlot* plot = ui->widget_chart;
    const auto symmetric = [plot](DataPlot::SensorType type, float range) {
        plot->setSensorType(type);
        plot->setValRange(-1.1 * range, 1.1 * range, false);
    };
    if (name == QLatin1String("Accelerometer")) {
        symmetric(DataPlot::ACCELEROMETER, levels.accRange);
    } else if (name == QLatin1String("Gyroscope")) {
        symmetric(DataPlot::GYROSCOPE, levels.gyroRange);
    } else if (name == QLatin1String("Magnetometer")) {
        symmetric(DataPlot::MAGNETOMETER, levels.magRange);
        ui->pushButton_calib_mag->show();
    } else if (name == QLatin1String("Orientation")) {
        symmetric(DataPlot::ORIENTATION, levels.orientRange);
    } else if (name == QLatin1String("Barometer")) {
        plot->setSensorType(DataPlot::BAROMETER);
        plot->setValRange(levels.pressureMin, levels.pressureMax, false);
        ui->lineEdit_value_0->setStyleSheet(style->valueSingle);
        ui->lineEdit_value_1->hide();
        ui->lineEdit_value_2->hide();
    } else if (name == QLatin1String("Camera Temperature")) {
        plot->setSensorType(DataPlot::TEMPERATURE);
        plot->setValRange(levels.temperatureMin, levels.temperatureMax, false);
        ui->lineEdit_value_0->setStyleSheet(style->valueY);
        ui->lineEdit_value_1->setStyleSheet(style->valueZ);
        ui->lineEdit_value_2->hide();
    }
    updateChartTimeSize();
}

void MainWindow::updateChartTimeSize() {
    const int range = chart::timeRangeFromText(ui->comboBox_time_range->currentText(), tr("sec"),
                                               tr("min"), tr("hours"));
    if (range >= 0) timeRange = range;
}

void MainWindow::on_comboBox_time_range_currentIndexChanged(const QString&) {
    updateChartTimeSize();
}

void MainWindow::updatePlot() {
    std::lock_guard<std::mutex> lock(dataMutex);
    DataPlot* plot = ui->widget_chart;
    plot->setAutoReplot(false);
    if (series.accX.isEmpty()) return;
    plotTimer->stop();

    const int start = chart::imuStartIndex(series.accX.size(), timeRange, imuPlotRate);
    const int period = chart::refreshPeriodMs(series.accX.size() - start);
    if (period != plotPeriodMs) {
        plotPeriodMs = period;
        plotTimer->setInterval(plotPeriodMs);
    }
    plotTime = tail(series.imuTime, start);
    feedChart(start);
    plot->replot();
    plotTimer->start();
}

void MainWindow::feedChart(int start) {
    DataPlot* plot = ui->widget_chart;
    const auto setTime = [&] {
        const chart::TimeAxis axis = chart::timeAxisFor(plotTime, timeRange);
        plot->setTimeRange(axis.min, axis.max, false);
    };
    const auto threeAxes = [&](const QVector<double>& x, const QVector<double>& y,
                               const QVector<double>& z, DataPlot::DataType first, float range) {
        plotY0 = tail(x, start), plotY1 = tail(y, start), plotY2 = tail(z, start);
        plot->updateData(first, plotTime, plotY0, false);
        plot->updateData(static_cast<DataPlot::DataType>(first + 1), plotTime, plotY1, false);
        plot->updateData(static_cast<DataPlot::DataType>(first + 2), plotTime, plotY2, false);
        plot->setValRange(-1.05 * range, 1.05 * range, false);
        setTime();
    };
    const QString& name = currentSensorName;
    if (name == QLatin1String("Gyroscope")) {
        threeAxes(series.gyroX, series.gyroY, series.gyroZ, DataPlot::GYR_X, levels.gyroRange);
    } else if (name == QLatin1String("Magnetometer")) {
        start = chart::eventStartIndex(series.magSampleX.size(), timeRange, magPlotRate);
        plotTime = tail(series.magSampleTime, start);
        threeAxes(series.magSampleX, series.magSampleY, series.magSampleZ, DataPlot::MAG_X,
                  levels.magRange);
    } else if (name == QLatin1String("Orientation")) {
        threeAxes(series.orientX, series.orientY, series.orientZ, DataPlot::OR_X,
                  levels.orientRange);
    } else if (name == QLatin1String("Barometer")) {
        start = chart::eventStartIndex(series.baroSamplePressure.size(), timeRange, baroPlotRate);
        plotY0 = tail(series.baroSamplePressure, start);
        plotTime = tail(series.baroSampleTime, start);
        setTime();
        plot->updateData(DataPlot::REL_ALTITUDE, plotTime, plotY0, false);
        plot->setValRange(levels.pressureMin, levels.pressureMax, false);
        // Also handed to the hidden left-temperature curve; the next temperature update
        // replaces it.
        plot->updateData(DataPlot::TEMP_LEFT, plotTime, plotY0, false);
    } else if (name == QLatin1String("Camera Temperature")) {
        const bool fallback = series.baroSampleTime.isEmpty();
        const QVector<double>& time = fallback ? series.tempFallbackTime : series.baroSampleTime;
        start =
            chart::eventStartIndex(time.size(), timeRange, fallback ? imuPlotRate : baroPlotRate);
        plotY0 = tail(series.tempSampleLeft, start);
        plotY1 = tail(series.tempSampleRight, start);
        plotTime = tail(time, start);
        setTime();
        plot->updateData(DataPlot::TEMP_LEFT, plotTime, plotY0, false);
        plot->updateData(DataPlot::TEMP_RIGHT, plotTime, plotY1, false);
        plot->setValRange(levels.temperatureMin, levels.temperatureMax, false);
    } else {
        threeAxes(series.accX, series.accY, series.accZ, DataPlot::ACC_X, levels.accRange);
    }
}
