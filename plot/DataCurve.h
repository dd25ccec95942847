#pragma once

#include <qwt_plot_curve.h>

#include <QColor>
#include <QPolygonF>
#include <QString>

// One line of the sensor chart.
//
// A live chart holds up to 31,200 samples per curve (60 s at 400 Hz plus a margin) on a canvas
// about a thousand pixels wide, so each pixel column holds dozens of samples. On screen the line
// is painted column by column with fills (see FilledStroke) instead of stroking every sample;
// the pixels are those Qwt's own drawing gives. Where that equivalence is not guaranteed
// (printing, scaled or antialiased painters, other pens, filled or fitted curves) the curve is
// drawn the ordinary way.
class DataCurve : public QwtPlotCurve {
public:
    explicit DataCurve(const QString& title);
    ~DataCurve() override;

    // Solid pen of the given colour and width.
    void setLine(const QColor& lineColour, double lineWidth);

protected:
    void drawLines(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                   const QRectF& canvasRect, int from, int to) const override;

private:
    bool canFill(QPainter* painter) const;
    bool mapToPixels(const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& inside,
                     int from, int to) const;

    QColor colour;
    double width;
    // Kept between frames so that mapping the samples does not allocate once the chart is full.
    mutable QPolygonF pixels;
};

