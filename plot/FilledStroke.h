#pragma once

#include <QBrush>
#include <QPointF>
#include <QPolygonF>
#include <QVarLengthArray>

class QPainter;

// Paints, with plain fills, exactly the pixels that QwtPainter::drawPolyline strokes along a
// pixel-aligned polyline with a solid, aliased pen of even width, square caps and bevel joins.
//
// A chart polyline has tens of points per pixel column. Its segments inside a column are all
// vertical, so together they cover one rectangle from the column's lowest to its highest point;
// only the column's first and last points meet other columns. Each column thus reduces to its
// first, lowest, highest and last point and costs one rectangle, one segment to the next column
// and the joins at both ends of that segment, however many samples it holds. The stroker, by
// contrast, spends the same work (trigonometry included) on every vertex.
//
// Qwt hands long polylines to the raster engine in pieces of a few segments, and each piece gets
// square caps at both ends. Those caps show (a column's extremes grow by a pixel where a piece
// ends), so they are painted here too, at the same vertices, for the picture to match.
class FilledStroke {
public:
    // `segmentsPerChunk`: segments per piece, 0 when the polyline is drawn whole.
    FilledStroke(QPainter& target, const QBrush& fill, double penWidth, int segmentsPerChunk);

    void draw(const QPolygonF& line);

private:
    // A cap of a vertical segment: rows [top, bottom] on the segment's column.
    struct VerticalCap {
        double top;
        double bottom;
    };

    void drawChunk(const QPointF* points, int count);
    void segment(const QPointF& a, const QPointF& b, const QPointF& dir);
    void join(const QPointF& p, const QPointF& dirIn, const QPointF& dirOut);
    void cap(const QPointF& p, const QPointF& dir);
    void flushRun();
    void box(double left, double top, double right, double bottom);
    void quad(const QPointF& a, const QPointF& b, const QPointF& c, const QPointF& d);

    QPainter& painter;
    QBrush brush;
    double half;
    int chunkSegments;

    // The vertical segments met last, all on one column and connected: one rectangle.
    bool runOpen = false;
    double runX = 0.0;
    double runTop = 0.0;
    double runBottom = 0.0;
    // Caps on the run wait for its full extent: most lie inside it and need no painting.
    QVarLengthArray<VerticalCap, 32> runCaps;
};

