// Counts the paint events a widget gets: how often a view draws.
#pragma once

#include <QEvent>
#include <QWidget>

class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* w) { w->installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;
        return false;
    }
};
