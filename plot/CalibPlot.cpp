#include "CalibPlot.h"

#include <qwt_plot_canvas.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_shapeitem.h>
#include <qwt_scale_widget.h>

#include <QPainterPath>
#include <QPalette>

#include "palette.h"

namespace {

// Indexed by CalibPlot::_plane; the dialog draws each plane's samples in the same colour.
const QColor kPlaneColours[] = {
    QColor(255, 53, 53, 100),
    QColor(77, 156, 210, 100),
    QColor(105, 199, 85, 100),
};

const char* const kEllipseTitles[] = {
    QT_TRANSLATE_NOOP("CalibPlot", "Fit Ellipse XY"),
    QT_TRANSLATE_NOOP("CalibPlot", "Fit Ellipse XZ"),
    QT_TRANSLATE_NOOP("CalibPlot", "Fit Ellipse YZ"),
};

constexpr double kInitialExtent = 1.5;

}  // namespace

CalibPlot::CalibPlot(QWidget* parent) : QwtPlot(parent) {
    setupCanvas();
    setupAxes();
    setupGrid();
    createEllipses();
}

CalibPlot::~CalibPlot() = default;

void CalibPlot::setFitEllipse(_plane plane, float x, float y, float w, float h) {
    if (plane < XY || plane > YZ) {
        return;
    }
    QPainterPath path;
    path.addEllipse(QRectF(double(x), double(y), double(w), double(h)));
    QwtPlotShapeItem* ellipse = ellipses[plane];
    ellipse->setShape(path);
    const QColor colour = kPlaneColours[plane];
    // Width 0: a cosmetic one-pixel outline at any zoom.
    ellipse->setPen(QPen(colour.darker(200), 0.0, Qt::SolidLine));
    ellipse->setBrush(QBrush(colour.lighter(150), Qt::SolidPattern));
}

void CalibPlot::setupCanvas() {
    plotCanvas = std::make_shared<QwtPlotCanvas>();
    plotCanvas->setFrameStyle(0);
    plotCanvas->setLineWidth(0);
    plotCanvas->setPalette(QPalette(Qt::white));
    plotCanvas->setPaintAttribute(QwtPlotCanvas::BackingStore, true);
    plotCanvas->setPaintAttribute(QwtPlotCanvas::ImmediatePaint, true);
    setCanvas(plotCanvas.get());
}

void CalibPlot::setupGrid() {
    grid = std::make_shared<QwtPlotGrid>();
    grid->setPen(QColor(QStringLiteral("#C0C0C0")), 1.0, Qt::DotLine);
    grid->attach(this);
}

void CalibPlot::setupAxes() {
    for (const int axis : {yLeft, xBottom}) {
        enableAxis(axis, true);
        setAxisScale(axis, -kInitialExtent, kInitialExtent);
        setAxisAutoScale(axis, true);
    }
    setAutoReplot(true);
    plotLayout()->setAlignCanvasToScales(true);

    const QString tickColour = tr("color: %1").arg(clr::med_black);
    axisWidget(yLeft)->setStyleSheet(tickColour);
    axisWidget(xBottom)->setStyleSheet(tickColour);
}

void CalibPlot::createEllipses() {
    for (const char* title : kEllipseTitles) {
        auto* ellipse = new QwtPlotShapeItem(tr(title));
        ellipse->setItemAttribute(QwtPlotItem::Legend, true);
        ellipse->setRenderHint(QwtPlotItem::RenderAntialiased, true);
        ellipse->attach(this);
        ellipses.append(ellipse);
    }
}
