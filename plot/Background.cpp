#include "Background.h"

#include <QPainter>

#include "palette.h"

Background::Background() : QwtPlotItem(QwtText()) { setZ(0.0); }

Background::~Background() = default;

int Background::rtti() const { return QwtPlotItem::Rtti_PlotUserItem; }

void Background::draw(QPainter* painter, const QwtScaleMap& /*xMap*/, const QwtScaleMap& /*yMap*/,
                      const QRectF& canvasRect) const {
    painter->fillRect(canvasRect, clr::bw_soil_clr);
}
