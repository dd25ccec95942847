#include "FilledStroke.h"

#include <QPainter>
#include <cmath>

namespace {

bool isWhole(double v) { return v == std::floor(v); }

QPointF unitDirection(const QPointF& from, const QPointF& to) {
    const QPointF d = to - from;
    return d / std::hypot(d.x(), d.y());
}

// Left-hand normal of a unit direction.
QPointF normalOf(const QPointF& dir) { return QPointF(-dir.y(), dir.x()); }

}  // namespace

FilledStroke::FilledStroke(QPainter& target, const QBrush& fill, double penWidth,
                           int segmentsPerChunk)
    : painter(target), brush(fill), half(penWidth / 2.0), chunkSegments(segmentsPerChunk) {}

void FilledStroke::draw(const QPolygonF& line) {
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    const int count = line.size();
    const int step = chunkSegments > 0 ? chunkSegments : qMax(1, count - 1);
    // The pieces share their end points, as Qwt cuts them.
    for (int start = 0; start < count; start += step) {
        drawChunk(line.constData() + start, qMin(step + 1, count - start));
    }
    flushRun();
    painter.restore();
}

// One piece as the stroker sees it: repeated points dropped, segments with bevel joins between
// them and a square cap at either end.
void FilledStroke::drawChunk(const QPointF* points, int count) {
    QPointF prev = points[0];
    QPointF prevDir;
    bool haveSegment = false;
    for (int i = 1; i < count; ++i) {
        const QPointF p = points[i];
        if (p == prev) {
            continue;
        }
        const QPointF dir = unitDirection(prev, p);
        // The segment first: a cap of a vertical segment is judged against the run it joins.
        segment(prev, p, dir);
        if (haveSegment) {
            join(prev, prevDir, dir);
        } else {
            cap(prev, -dir);
        }
        prev = p;
        prevDir = dir;
        haveSegment = true;
    }
    if (haveSegment) {
        cap(prev, prevDir);
    }
}

void FilledStroke::segment(const QPointF& a, const QPointF& b, const QPointF& dir) {
    if (a.x() == b.x()) {
        const bool continuesRun = runOpen && runX == a.x() && runTop <= a.y() && a.y() <= runBottom;
        if (!continuesRun) {
            flushRun();
            runOpen = true;
            runX = a.x();
            runTop = runBottom = a.y();
        }
        runTop = qMin(runTop, b.y());
        runBottom = qMax(runBottom, b.y());
        return;
    }
    if (a.y() == b.y()) {
        box(qMin(a.x(), b.x()), a.y() - half, qMax(a.x(), b.x()), a.y() + half);
        return;
    }
    const QPointF n = normalOf(dir) * half;
    quad(a + n, b + n, b - n, a - n);
}

// The bevel: the triangle between the outer corners of the two segments and the vertex. The
// inner side lies inside both segments; straight runs and reversals have no bevel.
void FilledStroke::join(const QPointF& p, const QPointF& dirIn, const QPointF& dirOut) {
    const double cross = dirIn.x() * dirOut.y() - dirIn.y() * dirOut.x();
    if (cross == 0.0) {
        return;
    }
    const double outer = cross > 0.0 ? -half : half;
    const QPointF a = p + normalOf(dirIn) * outer;
    const QPointF b = p + normalOf(dirOut) * outer;
    const QPointF triangle[] = {p, a, b};
    painter.drawPolygon(triangle, 3);
}

// A square cap: half the pen width beyond `p` in direction `dir`.
void FilledStroke::cap(const QPointF& p, const QPointF& dir) {
    const QPointF ahead = p + dir * half;
    if (dir.x() == 0.0) {
        // The segment has just joined the current run.
        runCaps.append(VerticalCap{qMin(p.y(), ahead.y()), qMax(p.y(), ahead.y())});
        return;
    }
    if (dir.y() == 0.0) {
        box(qMin(p.x(), ahead.x()), p.y() - half, qMax(p.x(), ahead.x()), p.y() + half);
        return;
    }
    const QPointF n = normalOf(dir) * half;
    quad(p + n, ahead + n, ahead - n, p - n);
}

void FilledStroke::flushRun() {
    if (!runOpen) {
        runCaps.clear();
        return;
    }
    if (runBottom > runTop) {
        box(runX - half, runTop, runX + half, runBottom);
    }
    for (const VerticalCap& c : runCaps) {
        if (c.top < runTop || c.bottom > runBottom) {
            box(runX - half, c.top, runX + half, c.bottom);
        }
    }
    runCaps.clear();
    runOpen = false;
}

void FilledStroke::box(double left, double top, double right, double bottom) {
    if (isWhole(left) && isWhole(top) && isWhole(right) && isWhole(bottom)) {
        painter.fillRect(QRectF(left, top, right - left, bottom - top), brush);
        return;
    }
    quad(QPointF(left, top), QPointF(right, top), QPointF(right, bottom), QPointF(left, bottom));
}

void FilledStroke::quad(const QPointF& a, const QPointF& b, const QPointF& c, const QPointF& d) {
    const QPointF corners[] = {a, b, c, d};
    painter.drawPolygon(corners, 4);
}
