#include "AdevPlot.h"

#include <qwt_legend.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_scale_engine.h>
#include <qwt_scale_widget.h>

#include "Background.h"
#include "CssValues.h"
#include "palette.h"
#include "style.h"

using imunoise::AxisResult;
using imunoise::LineFit;
using imunoise::Sensor;

namespace {

QColor axisColour(int component) {
    const QString texts[] = {clr::xAxis, clr::yAxis, clr::zAxis};
    return cssColour(texts[component]);
}

}  // namespace

// Dressed like the main window's chart: the same dark canvas, grid, fonts and tick colour.
AdevPlot::AdevPlot(Sensor sensor_, QWidget* parent) : QwtPlot(parent), sensor(sensor_) {
    auto* plotCanvas = new QwtPlotCanvas();
    plotCanvas->setFrameStyle(QFrame::NoFrame);
    setCanvas(plotCanvas);
    (new Background())->attach(this);  // the plot owns its items
    auto* grid = new QwtPlotGrid();
    grid->setPen(QColor(QStringLiteral("#C0C0C0")), 1.0, Qt::DotLine);
    grid->attach(this);

    const Style style;
    QwtText title(sensor == Sensor::GYROSCOPE ? tr("Gyroscope") : tr("Accelerometer"));
    title.setFont(cssFont(style.fontTitle));
    title.setColor(cssColour(clr::bw_pearl));
    setTitle(title);
    const QString tickColour = QStringLiteral("color: %1").arg(clr::med_black);
    for (const int axis : {xBottom, yLeft}) {
        setAxisScaleEngine(axis, new QwtLogScaleEngine);
        setAxisFont(axis, cssFont(style.fontAxis));
        axisWidget(axis)->setStyleSheet(tickColour);
    }
    QwtText tauTitle(tr("Cluster time τ [s]"));
    QwtText deviationTitle(sensor == Sensor::GYROSCOPE ? tr("Allan deviation [rad/s]")
                                                       : tr("Allan deviation [m/s²]"));
    for (QwtText* text : {&tauTitle, &deviationTitle}) text->setFont(cssFont(style.fontTitle));
    setAxisTitle(xBottom, tauTitle);
    setAxisTitle(yLeft, deviationTitle);
    insertLegend(new QwtLegend(), QwtPlot::BottomLegend);
}

void AdevPlot::showReport(const imunoise::NoiseReport& report) {
    detachItems(QwtPlotItem::Rtti_PlotCurve, true);
    for (int c = 0; c < 3; ++c)
        addAxis(report[imunoise::axisOf(sensor, c)], QStringLiteral("xyz").mid(c, 1),
                axisColour(c));
    replot();
}

void AdevPlot::addAxis(const AxisResult& result, const QString& name, const QColor& colour) {
    if (!result.present || result.curve.empty()) return;
    QVector<QPointF> points;
    for (const imunoise::AdevPoint& p : result.curve) points << QPointF(p.tau, p.deviation);
    auto* curve = new QwtPlotCurve(name);
    curve->setPen(colour, 2.0);
    curve->setRenderHint(QwtPlotItem::RenderAntialiased, true);
    curve->setSamples(points);
    curve->attach(this);
    const double first = result.curve.front().tau, last = result.curve.back().tau;
    if (result.noise.white) addLine(*result.noise.white, colour, first, last);
    if (result.noise.walk) addLine(*result.noise.walk, colour, first, last);
}

// Thin across the whole curve, bold over the fitted region.
void AdevPlot::addLine(const LineFit& line, const QColor& colour, double tauFrom, double tauTo) {
    auto* whole = new QwtPlotCurve();
    QColor faint = colour;
    faint.setAlpha(150);
    whole->setPen(faint, 1.0, Qt::DashLine);
    whole->setSamples(QVector<QPointF>{{tauFrom, line.at(tauFrom)}, {tauTo, line.at(tauTo)}});
    whole->setItemAttribute(QwtPlotItem::Legend, false);
    whole->attach(this);
    auto* region = new QwtPlotCurve();
    QColor bold = colour.darker(130);
    region->setPen(bold, 5.0, Qt::SolidLine);
    region->setSamples(
        QVector<QPointF>{{line.tauFrom, line.at(line.tauFrom)}, {line.tauTo, line.at(line.tauTo)}});
    region->setItemAttribute(QwtPlotItem::Legend, false);
    region->attach(this);
}
