#pragma once

#include <qwt_plot.h>
#include <qwt_series_data.h>
#include <qwt_text.h>

#include <QVector>
#include <array>

class DataCurve;
class QwtPlotItem;
class Style;

// The main window's strip chart: the samples of one sensor against time.
//
// All fifteen curves exist from construction on; choosing a sensor only switches which of them
// are visible. The owner feeds the curves and sets both axis ranges, each call with replot
// false, and then calls replot() once per update.
class DataPlot : public QwtPlot {
    Q_OBJECT

public:
    // Which sensor is shown.
    enum SensorType {
        ACCELEROMETER = 0,
        GYROSCOPE = 1,
        MAGNETOMETER = 2,
        ORIENTATION = 3,
        BAROMETER = 4,
        TEMPERATURE = 5,
    };

    // One curve each; the values index the curves.
    enum DataType {
        ACC_X = 0,
        ACC_Y,
        ACC_Z,
        GYR_X,
        GYR_Y,
        GYR_Z,
        MAG_X,
        MAG_Y,
        MAG_Z,
        OR_X,
        OR_Y,
        OR_Z,
        REL_ALTITUDE,
        TEMP_LEFT,
        TEMP_RIGHT,
    };
    static constexpr int curveCount = TEMP_RIGHT + 1;

    explicit DataPlot(QWidget* parent = nullptr);
    ~DataPlot() override;

    // Shows the curves of `type` with their value-axis title, hides all others and replots.
    // An unknown type hides every curve and keeps the previous title.
    void setSensorType(SensorType type);

    // Replaces the samples of one curve by the pairs (x[i], y[i]): x is time in seconds. Vectors
    // of different lengths are cut to the shorter one.
    void updateData(DataType type, QVector<double> x, QVector<double> y, bool replot);
    // Replaces the samples of one curve by `samples` (x is time in seconds), which the curve
    // owns from now on and reads whenever it is drawn.
    void setCurveData(DataType type, QwtSeriesData<QPointF>* samples, bool replot);

    // Fixed value-axis range, ticks chosen automatically.
    void setValRange(double min, double max, bool replot);
    // Fixed time-axis range in seconds, ticks chosen automatically.
    void setTimeRange(double min, double max, bool replot);

    void showCurve(QwtPlotItem* item, bool on, bool replot);

private:
    void setupCanvas();
    void setupGrid();
    void setupTimeAxis(const Style& style);
    void setupValueAxis(const Style& style);
    void setupTracker();
    void createCurves();
    void setFixedScale(int axis, double min, double max, bool replot);

    std::array<DataCurve*, curveCount> curves{};
    QwtText yTitle;
    QwtText xTitle;
};
