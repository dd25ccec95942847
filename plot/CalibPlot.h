#pragma once

#include <qwt_plot.h>

#include <QVector>
#include <memory>

class QwtPlotCanvas;
class QwtPlotGrid;
class QwtPlotShapeItem;

// A square scatter plot of magnetic-field projections for the calibration dialog, with one
// translucent guide ellipse per projection plane. The dialog attaches the sample curves itself;
// this plot provides the canvas, the grid and the ellipses.
//
// Both axes start at -1.5 to 1.5 and scale themselves to the data from then on.
class CalibPlot : public QwtPlot {
    Q_OBJECT

public:
    enum _plane {
        XY = 0,
        XZ = 1,
        YZ = 2,
    };

    explicit CalibPlot(QWidget* parent = nullptr);
    ~CalibPlot() override;

    // The guide ellipse of `plane` becomes the ellipse inscribed in the rectangle with top-left
    // corner (x, y), width w and height h, in plot coordinates, in the plane's colour: darker
    // outline, lighter translucent fill.
    void setFitEllipse(_plane plane, float x, float y, float w, float h);

private:
    void setupCanvas();
    void setupAxes();
    void setupGrid();
    void createEllipses();

    // The plot owns its canvas (a child widget) and, through autoDelete, its items. These
    // pointers are released before the base class is destroyed: deleting the canvas takes it
    // off the plot's children and deleting the grid detaches it, so each is deleted once.
    std::shared_ptr<QwtPlotCanvas> plotCanvas;
    std::shared_ptr<QwtPlotGrid> grid;
    QVector<QwtPlotShapeItem*> ellipses;
};

