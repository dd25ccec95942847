#pragma once

#include <qwt_plot.h>

#include <QImage>
#include <QWidget>

// What a plot's canvas shows now (from its backing store when it has one).
inline QImage canvasImage(QwtPlot& plot) {
    return plot.canvas()->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

// Share of pixels, from 0 to 1, that differ between two images; 1 when their sizes differ.
inline double differingShare(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull()) {
        return 1.0;
    }
    const QImage ra = a.convertToFormat(QImage::Format_RGB32);
    const QImage rb = b.convertToFormat(QImage::Format_RGB32);
    qint64 differing = 0;
    for (int y = 0; y < ra.height(); ++y) {
        for (int x = 0; x < ra.width(); ++x) {
            differing += ra.pixel(x, y) != rb.pixel(x, y) ? 1 : 0;
        }
    }
    return double(differing) / double(qint64(ra.width()) * ra.height());
}

