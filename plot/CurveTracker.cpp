#include "CurveTracker.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_series_data.h>
#include <qwt_text.h>

#include <QPen>
#include <QStringList>

namespace {

// Distance between the cursor and the text box, enough to keep the box off the cursor shape
// and the rubber band line.
constexpr int kCursorGap = 12;

struct LessThanSampleX {
    bool operator()(double x, const QPointF& sample) const { return x < sample.x(); }
};

QwtText styledTrackerText(const QString& html) {
    QwtText text(html);
    text.setRenderFlags(Qt::AlignLeft);
    text.setColor(Qt::black);
    const QColor boxColour(QStringLiteral("#FFFFFF"));
    text.setBorderPen(QPen(boxColour));
    QColor background = boxColour;
    background.setAlpha(200);
    text.setBackgroundBrush(background);
    return text;
}

}  // namespace

CurveTracker::CurveTracker(QWidget* canvas) : QwtPlotPicker(canvas) {
    setTrackerMode(QwtPicker::ActiveOnly);
    setRubberBand(QwtPicker::VLineRubberBand);
}

CurveTracker::~CurveTracker() = default;

QRect CurveTracker::trackerRect(const QFont& font) const {
    QRect rect = QwtPlotPicker::trackerRect(font);
    if (rect.isEmpty()) {
        return rect;
    }
    const QRect area = parentWidget()->contentsRect();
    const QPoint cursor = trackerPosition();

    // Right of the cursor where the box fits, otherwise left of it.
    int left = cursor.x() + kCursorGap;
    if (left + rect.width() > area.right() + 1) {
        left = cursor.x() - kCursorGap - rect.width();
    }
    left = qMax(left, area.left());
    const int lowestTop = qMax(area.top(), area.bottom() + 1 - rect.height());
    const int top = qBound(area.top(), cursor.y() - rect.height() / 2, lowestTop);
    rect.moveTo(left, top);
    return rect;
}

QwtText CurveTracker::trackerTextF(const QPointF& pos) const {
    QStringList lines;
    const QwtPlotItemList curves = plot()->itemList(QwtPlotItem::Rtti_PlotCurve);
    for (const QwtPlotItem* item : curves) {
        if (!item->isVisible()) {
            continue;
        }
        const QString info = curveInfoAt(static_cast<const QwtPlotCurve*>(item), pos);
        if (!info.isEmpty()) {
            lines += info;
        }
    }
    return styledTrackerText(lines.join(QStringLiteral("<br>")));
}

QString CurveTracker::curveInfoAt(const QwtPlotCurve* curve, const QPointF& pos) const {
    const std::optional<QLineF> segment = curveLineAt(curve, pos.x());
    if (!segment) {
        return QString();
    }
    const QLineF& line = *segment;
    // A vertical segment (two samples at one time) has no single value: take its end.
    const double dx = line.x2() - line.x1();
    const double t = dx != 0.0 ? (pos.x() - line.x1()) / dx : 1.0;
    const double value = line.y1() + t * (line.y2() - line.y1());
    return QStringLiteral("<font color=%1>%3</font>")
        .arg(curve->pen().color().name(), QString::number(value, 'f', 2));
}

// The segment between the two samples around x (samples in time order), or nothing when x lies
// before the first or after the last sample.
std::optional<QLineF> CurveTracker::curveLineAt(const QwtPlotCurve* curve, double x) const {
    const int size = static_cast<int>(curve->dataSize());
    if (size < 2) {
        return std::nullopt;
    }
    int upper = qwtUpperSampleIndex<QPointF>(*curve->data(), x, LessThanSampleX());
    // The search leaves out the last sample itself.
    if (upper == -1 && x == curve->sample(static_cast<size_t>(size - 1)).x()) {
        upper = size - 1;
    }
    if (upper <= 0) {
        return std::nullopt;
    }
    return QLineF(curve->sample(static_cast<size_t>(upper - 1)),
                  curve->sample(static_cast<size_t>(upper)));
}
