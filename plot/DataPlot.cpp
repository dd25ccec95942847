#include "DataPlot.h"

#include <qwt_painter.h>
#include <qwt_picker_machine.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_scale_widget.h>

#include <QFontMetrics>
#include <QPalette>
#include <QTime>

#include "Background.h"
#include "CssValues.h"
#include "CurveTracker.h"
#include "DataCurve.h"
#include "TimeScaleDraw.h"
#include "palette.h"
#include "style.h"

namespace {

struct CurveLook {
    const char* title;
    const QString& colour;
};

// Indexed by DataPlot::DataType. X is always red, Y green, Z blue; the temperatures take the
// Y and Z colours.
const CurveLook kCurveLooks[DataPlot::curveCount] = {
    {QT_TRANSLATE_NOOP("DataPlot", "Acc. X"), clr::xAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Acc. Y"), clr::yAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Acc. Z"), clr::zAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Gyr. X"), clr::xAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Gyr. Y"), clr::yAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Gyr. Z"), clr::zAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Mag. X"), clr::xAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Mag. Y"), clr::yAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Mag. Z"), clr::zAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Or. X"), clr::xAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Or. Y"), clr::yAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Or. Z"), clr::zAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Rel. Altitude"), clr::singleAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Temperature Camera Left"), clr::yAxis},
    {QT_TRANSLATE_NOOP("DataPlot", "Temperature Camera Right"), clr::zAxis},
};

constexpr double kCurveWidth = 2.0;

struct SensorLayout {
    const char* axisTitle;
    DataPlot::DataType firstCurve;
    int curveCount;
};

// Indexed by DataPlot::SensorType. The barometer's curve carries pressure values although its
// title names the relative altitude.
const SensorLayout kSensorLayouts[] = {
    {QT_TRANSLATE_NOOP("DataPlot", "Accelerations [m/s²]"), DataPlot::ACC_X, 3},
    {QT_TRANSLATE_NOOP("DataPlot", "Angular velocities [°/s]"), DataPlot::GYR_X, 3},
    {QT_TRANSLATE_NOOP("DataPlot", "Magnetic fields [µT]"), DataPlot::MAG_X, 3},
    {QT_TRANSLATE_NOOP("DataPlot", "Orientation [°]"), DataPlot::OR_X, 3},
    {QT_TRANSLATE_NOOP("DataPlot", "Atmospheric Pressure [hPa]"), DataPlot::REL_ALTITUDE, 1},
    {QT_TRANSLATE_NOOP("DataPlot", "Camera temperatures [°C]"), DataPlot::TEMP_LEFT, 2},
};

}  // namespace

DataPlot::DataPlot(QWidget* parent) : QwtPlot(parent) {
    setAutoReplot(false);
    setupCanvas();
    QwtPainter::setPolylineSplitting(true);
    plotLayout()->setAlignCanvasToScales(true);
    setupGrid();

    const Style style;
    setupTimeAxis(style);
    setupValueAxis(style);

    auto* background = new Background();
    background->attach(this);

    createCurves();
    setSensorType(ACCELEROMETER);
    setupTracker();
}

DataPlot::~DataPlot() {
    for (DataCurve*& curve : curves) {
        delete curve;
        curve = nullptr;
    }
}

void DataPlot::setupCanvas() {
    auto* plotCanvas = new QwtPlotCanvas();
    plotCanvas->setFrameStyle(0);
    plotCanvas->setLineWidth(0);
    plotCanvas->setPalette(QPalette(Qt::white));
    // Frames are drawn into the backing store and shown from there: a repaint that is not a
    // replot (an expose, the tracker moving) costs one pixmap copy.
    plotCanvas->setPaintAttribute(QwtPlotCanvas::BackingStore, true);
    plotCanvas->setPaintAttribute(QwtPlotCanvas::ImmediatePaint, false);
    setCanvas(plotCanvas);
}

void DataPlot::setupGrid() {
    auto* grid = new QwtPlotGrid();
    grid->setPen(QColor(QStringLiteral("#C0C0C0")), 1.0, Qt::DotLine);
    // Horizontal lines at the value ticks only: vertical lines would scroll with the time axis.
    grid->enableX(false);
    grid->attach(this);
}

void DataPlot::setupTimeAxis(const Style& style) {
    xTitle.setText(tr("Timestamp [h:m:s]"));
    xTitle.setFont(cssFont(style.fontTitle));
    setAxisTitle(xBottom, xTitle);
    setAxisFont(xBottom, cssFont(style.fontAxis));

    setAxisScaleDraw(xBottom, new TimeScaleDraw(QTime(0, 0, 0, 0)));
    axisScaleDraw(xBottom)->setTickLength(QwtScaleDiv::MajorTick, 3.0);
    setAxisScale(xBottom, 0.0, 10.0, 0.0);
    setAxisMaxMinor(xBottom, 0);
    setAxisLabelRotation(xBottom, 0.0);
    setAxisLabelAlignment(xBottom, Qt::AlignHCenter | Qt::AlignBottom);

    const QString tickColour = tr("color: %1").arg(clr::med_black);
    axisWidget(xBottom)->setStyleSheet(tickColour);
    axisWidget(yLeft)->setStyleSheet(tickColour);

    // Half a label may reach out past either end of the time axis. The negative start lets the
    // canvas begin where the value axis ends instead of leaving room for the first label.
    const int labelWidth =
        QFontMetrics(axisWidget(xBottom)->font()).horizontalAdvance(QStringLiteral("hh:mm:ss"));
    axisWidget(xBottom)->setMinBorderDist(-(labelWidth / 2), labelWidth / 2);
}

void DataPlot::setupValueAxis(const Style& style) {
    yTitle.setFont(cssFont(style.fontTitle));
    // Still empty here; setSensorType gives both axes their final titles.
    setAxisTitle(xBottom, yTitle);
    setAxisFont(yLeft, cssFont(style.fontAxis));
    setAxisAutoScale(yLeft, false);
    setAxisMaxMinor(yLeft, 0);
    axisScaleDraw(yLeft)->setTickLength(QwtScaleDiv::MajorTick, 0.0);
}

void DataPlot::setupTracker() {
    auto* tracker = new CurveTracker(canvas());
    tracker->setStateMachine(new QwtPickerTrackerMachine());
    tracker->setRubberBandPen(QColor(QStringLiteral("MediumOrchid")));
}

void DataPlot::createCurves() {
    for (int type = 0; type < curveCount; ++type) {
        const CurveLook& look = kCurveLooks[type];
        auto* curve = new DataCurve(tr(look.title));
        curve->setLine(cssColour(look.colour), kCurveWidth);
        curve->attach(this);
        curves[static_cast<size_t>(type)] = curve;
    }
}

void DataPlot::setSensorType(SensorType type) {
    for (DataCurve* curve : curves) {
        showCurve(curve, false, false);
    }
    if (type >= ACCELEROMETER && type <= TEMPERATURE) {
        const SensorLayout& sensorLayout = kSensorLayouts[type];
        yTitle.setText(tr(sensorLayout.axisTitle));
        for (int i = 0; i < sensorLayout.curveCount; ++i) {
            showCurve(curves[static_cast<size_t>(sensorLayout.firstCurve + i)], true, false);
        }
    }
    setAxisTitle(yLeft, yTitle);
    setAxisTitle(xBottom, xTitle);
    replot();
}

void DataPlot::updateData(DataType type, QVector<double> x, QVector<double> y, bool replot) {
    if (type < 0 || type >= curveCount) {
        return;
    }
    curves[static_cast<size_t>(type)]->setSamples(x, y);
    if (replot) {
        this->replot();
    }
}

void DataPlot::setCurveData(DataType type, QwtSeriesData<QPointF>* samples, bool replot) {
    if (type < 0 || type >= curveCount) {
        delete samples;
        return;
    }
    curves[static_cast<size_t>(type)]->setData(samples);
    if (replot) {
        this->replot();
    }
}

void DataPlot::setValRange(double min, double max, bool replot) {
    setFixedScale(yLeft, min, max, replot);
}

void DataPlot::setTimeRange(double min, double max, bool replot) {
    setFixedScale(xBottom, min, max, replot);
}

void DataPlot::showCurve(QwtPlotItem* item, bool on, bool replot) {
    item->setVisible(on);
    if (replot) {
        this->replot();
    }
}

void DataPlot::setFixedScale(int axis, double min, double max, bool replot) {
    setAxisScale(axis, min, max, 0.0);
    setAxisMaxMinor(axis, 0);
    if (replot) {
        this->replot();
    }
}
