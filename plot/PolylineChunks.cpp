#include "PolylineChunks.h"

#include <qwt_painter.h>

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPolygonF>
#include <QVector>

namespace {

// Looks like the raster engine (QwtPainter splits only for that one) and records the length of
// every polyline it is asked to draw.
class RecordingEngine : public QPaintEngine {
public:
    QVector<int> polylineLengths;

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPolygon(const QPointF*, int pointCount, PolygonDrawMode mode) override {
        if (mode == PolylineMode) {
            polylineLengths.append(pointCount);
        }
    }
    Type type() const override { return QPaintEngine::Raster; }
};

class RecordingDevice : public QPaintDevice {
public:
    QPaintEngine* paintEngine() const override { return &engine; }
    const QVector<int>& polylineLengths() const { return engine.polylineLengths; }

protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
            case PdmWidth:
            case PdmHeight:
                return 1000;
            case PdmWidthMM:
            case PdmHeightMM:
                return 265;
            case PdmDpiX:
            case PdmDpiY:
            case PdmPhysicalDpiX:
            case PdmPhysicalDpiY:
                return 96;
            case PdmDepth:
                return 32;
            case PdmDevicePixelRatio:
                return 1;
            case PdmDevicePixelRatioScaled:
                return int(QPaintDevice::devicePixelRatioFScale());
            default:
                return 0;
        }
    }

private:
    mutable RecordingEngine engine;
};

// The piece size with splitting on, whatever the setting is at the time of asking.
int observeChunkSegments() {
    const bool splitting = QwtPainter::polylineSplitting();
    QwtPainter::setPolylineSplitting(true);
    constexpr int kPoints = 1000;
    QPolygonF line;
    line.reserve(kPoints);
    for (int i = 0; i < kPoints; ++i) {
        line.append(QPointF(i, i % 2));
    }
    RecordingDevice device;
    {
        QPainter painter(&device);
        painter.setPen(QPen(Qt::black, 2.0));
        QwtPainter::drawPolyline(&painter, line);
    }
    QwtPainter::setPolylineSplitting(splitting);
    const QVector<int>& lengths = device.polylineLengths();
    if (lengths.size() < 2) {
        return 0;
    }
    // Pieces share their end points: n points in a piece are n - 1 segments.
    return lengths.first() - 1;
}

}  // namespace

int polylineChunkSegments() {
    static const int pieceSegments = observeChunkSegments();
    return QwtPainter::polylineSplitting() ? pieceSegments : 0;
}
