#pragma once

#include <qwt_plot_item.h>

// Paints the whole canvas in the theme's darkest grey. As a plot item (z = 0, beneath the grid
// and the curves) it is part of every replot and of the canvas backing store, whatever palette
// or style sheet the canvas widget gets from its parents.
class Background : public QwtPlotItem {
public:
    Background();
    ~Background() override;

    // QwtPlotItem::Rtti_PlotUserItem, the first number Qwt leaves to applications.
    int rtti() const override;

    void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
              const QRectF& canvasRect) const override;
};

