#include "DataCurve.h"

#include <qwt_clipper.h>
#include <qwt_painter.h>
#include <qwt_point_data.h>
#include <qwt_scale_map.h>

#include <QPaintEngine>
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <cmath>

#include "FilledStroke.h"
#include "PolylineChunks.h"
#include "SampleRuns.h"

namespace {

// Qwt rounds every point to whole pixels before drawing on a pixel device, halves away from
// zero (qRound). The same here, through a 64-bit integer so that points far off the canvas
// cannot overflow; beyond that range a double is whole anyway.
inline double roundToPixel(double v) {
    constexpr double kExact = 4.5e15;
    if (!(std::abs(v) < kExact)) {
        return v;
    }
    return double(static_cast<qint64>(v >= 0.0 ? v + 0.5 : v - 0.5));
}

inline QPointF toPixel(const QwtScaleMap& xMap, const QwtScaleMap& yMap, double x, double y) {
    return QPointF(roundToPixel(xMap.transform(x)), roundToPixel(yMap.transform(y)));
}

// FilledStroke reproduces the raster engine's aliased stroke of a solid pen with square caps,
// bevel joins and an even width (its edges then fall between pixel centres).
bool isFillablePen(const QPen& pen) {
    const double w = pen.widthF();
    return pen.style() == Qt::SolidLine && pen.capStyle() == Qt::SquareCap &&
           pen.joinStyle() == Qt::BevelJoin && !pen.isCosmetic() && w >= 2.0 &&
           std::fmod(w, 2.0) == 0.0 && pen.brush().style() == Qt::SolidPattern;
}

bool isPixelAligned(const QPainter* painter) {
    const QTransform& t = painter->transform();
    return t.type() <= QTransform::TxTranslate && t.dx() == std::floor(t.dx()) &&
           t.dy() == std::floor(t.dy());
}

}  // namespace

DataCurve::DataCurve(const QString& title) : QwtPlotCurve(title), colour(Qt::black), width(1.0) {
    setPen(QPen(colour, width, Qt::SolidLine));
    setPaintAttribute(QwtPlotCurve::ClipPolygons, true);
    setPaintAttribute(QwtPlotCurve::FilterPoints, true);
    setRenderHint(QwtPlotItem::RenderAntialiased, false);
    setStyle(QwtPlotCurve::Lines);
}

DataCurve::~DataCurve() = default;

void DataCurve::setLine(const QColor& lineColour, double lineWidth) {
    colour = lineColour;
    width = lineWidth;
    setPen(QPen(colour, width, Qt::SolidLine));
}

// The same steps as QwtPlotCurve::drawLines (round, drop repeated points, clip to the canvas
// plus a pen width) give the same polyline; only the painting differs.
void DataCurve::drawLines(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                          const QRectF& canvasRect, int from, int to) const {
    if (from > to || !canFill(painter)) {
        QwtPlotCurve::drawLines(painter, xMap, yMap, canvasRect, from, to);
        return;
    }
    const QPen& pen = painter->pen();
    const qreal margin = qMax(qreal(1.0), pen.widthF());
    const QRectF clipRect = canvasRect.adjusted(-margin, -margin, margin, margin);
    const bool clip = testPaintAttribute(QwtPlotCurve::ClipPolygons);
    const bool allInside = mapToPixels(xMap, yMap, clipRect, from, to);

    FilledStroke stroke(*painter, pen.brush(), pen.widthF(), polylineChunkSegments());
    if (clip && !allInside) {
        stroke.draw(QwtClipper::clipPolygonF(clipRect, pixels, false));
    } else {
        stroke.draw(pixels);
    }
}

// Fills match Qwt's stroke on the raster engine, in device pixels, for the one polyline Qwt
// would draw: no fitting, no filled area, repeated points dropped (they would shift where Qwt
// cuts the polyline into pieces).
bool DataCurve::canFill(QPainter* painter) const {
    const QPaintEngine* engine = painter->paintEngine();
    const bool rasterPixels = engine && engine->type() == QPaintEngine::Raster &&
                              QwtPainter::roundingAlignment(painter) && isPixelAligned(painter) &&
                              !painter->testRenderHint(QPainter::Antialiasing);
    const bool plainLine = brush().style() == Qt::NoBrush || brush().color().alpha() == 0;
    return rasterPixels && plainLine && isFillablePen(painter->pen()) &&
           !testCurveAttribute(QwtPlotCurve::Fitted) &&
           testPaintAttribute(QwtPlotCurve::FilterPoints);
}

// Fills `pixels` with the rounded points, repeated ones dropped; samples that are not finite
// numbers are left out. Returns whether every point lies strictly inside `inside`, where
// clipping would change nothing.
bool DataCurve::mapToPixels(const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& inside,
                            int from, int to) const {
    // Growing to the sample count reuses last frame's allocation; writing through a plain
    // pointer keeps the loop free of QVector's checks.
    pixels.resize(to - from + 1);
    QPointF* out = pixels.data();
    int count = 0;
    bool allInside = true;
    auto add = [&](const QPointF& p) {
        const bool finite = std::isfinite(p.x()) && std::isfinite(p.y());
        if (!finite || (count > 0 && out[count - 1] == p)) {
            return;
        }
        out[count++] = p;
        allInside = allInside && p.x() > inside.left() && p.x() < inside.right() &&
                    p.y() > inside.top() && p.y() < inside.bottom();
    };
    // Curves fed by DataPlot hold plain arrays, whole or in runs: reading them directly spares
    // a virtual call per sample.
    if (const auto* arrays = dynamic_cast<const QwtPointArrayData*>(data())) {
        const double* xs = arrays->xData().constData();
        const double* ys = arrays->yData().constData();
        for (int i = from; i <= to; ++i) {
            add(toPixel(xMap, yMap, xs[i], ys[i]));
        }
    } else if (const auto* runs = dynamic_cast<const SampleRuns*>(data())) {
        for (auto i = static_cast<std::size_t>(from); i <= static_cast<std::size_t>(to);) {
            const SampleRuns::Run run = runs->runFrom(i);
            const std::size_t n = std::min(run.count, static_cast<std::size_t>(to) + 1 - i);
            for (std::size_t k = 0; k < n; ++k) {
                add(toPixel(xMap, yMap, run.x[k], run.y[k]));
            }
            i += n;
        }
    } else {
        for (int i = from; i <= to; ++i) {
            const QPointF s = sample(static_cast<size_t>(i));
            add(toPixel(xMap, yMap, s.x(), s.y()));
        }
    }
    pixels.resize(count);
    return allInside;
}
