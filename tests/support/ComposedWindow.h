// Pictures of a whole top-level window as a user sees it, taken the two ways a screenshot is:
// QWidget::grab of the window (the backing store with every GL view's texture composed in as
// premultiplied ARGB) and the X server's root window over the window's area. Tests then look at
// the parts of them that named widgets cover.
#pragma once

#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QString>
#include <QVector>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace composed {

struct Shot {
    QString how;  // for failure messages
    QImage image;
};

inline QImage widgetGrab(QWidget* window) {
    return window->grab().toImage().convertToFormat(QImage::Format_ARGB32);
}

// What the X server shows once the window's pending updates are painted and flushed: the server
// answers the grab after those requests.
inline QImage screenGrab(QWidget* window) {
    window->repaint();
    const QPoint origin = window->mapToGlobal(QPoint(0, 0));
    const QPixmap pixels =
        window->screen()->grabWindow(0, origin.x(), origin.y(), window->width(), window->height());
    return pixels.toImage().convertToFormat(QImage::Format_ARGB32);
}

inline QVector<Shot> grabBoth(QWidget* window) {
    return {{QStringLiteral("QWidget::grab"), widgetGrab(window)},
            {QStringLiteral("X root window"), screenGrab(window)}};
}

// The widget named `name` inside `window`; a missing one ends the test run.
inline QWidget* named(QWidget* window, const char* name) {
    auto* widget = window->findChild<QWidget*>(QString::fromLatin1(name));
    if (widget == nullptr) qFatal("no widget named %s", name);
    return widget;
}

// The part of a picture of `window` that `widget` covers, shrunk by `inset` pixels all round.
inline QImage region(const QImage& shot, const QWidget* window, const QWidget* widget,
                     int inset = 0) {
    const QRect area(widget->mapTo(window, QPoint(0, 0)), widget->size());
    return shot.copy(area.adjusted(inset, inset, -inset, -inset));
}

// The colour that covers most of an image: the background of a label or a panel.
inline QColor dominantColour(const QImage& image) {
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y) | 0xff000000u];
    QRgb best = 0;
    int most = -1;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        if (it.value() > most) {
            most = it.value();
            best = it.key();
        }
    return QColor::fromRgb(best);
}

// "(r, g, b)", for failure messages.
inline QString describe(const QColor& c) {
    return QString("(%1, %2, %3)").arg(c.red()).arg(c.green()).arg(c.blue());
}

inline int distance(const QColor& a, const QColor& b) {
    return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                     std::abs(a.blue() - b.blue())});
}

// Pixels whose red, green and blue each lie within `tolerance` of the colour's.
inline int countNear(const QImage& image, const QColor& colour, int tolerance = 3) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            n += distance(image.pixelColor(x, y), colour) <= tolerance ? 1 : 0;
    return n;
}

// The pixel that differs most from the background: the full colour of text drawn on it.
inline QColor inkColour(const QImage& image, const QColor& background) {
    QColor ink = background;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (distance(c, background) > distance(ink, background)) ink = c;
        }
    return ink;
}

// The columns of `image` from the first to the last that hold ink: pixels that differ clearly
// from the background. Empty (right < left) when there is none.
struct InkSpan {
    int left = 0;
    int right = -1;
    int width() const { return right - left + 1; }
};

inline InkSpan inkSpan(const QImage& image, const QColor& background) {
    InkSpan span{image.width(), -1};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (distance(image.pixelColor(x, y), background) > 60) {
                span.left = std::min(span.left, x);
                span.right = std::max(span.right, x);
            }
    return span;
}

// `text` drawn whole in `font`, as `like` would draw it at its resolution, in the same colours,
// with room to spare all round.
inline QImage textAlone(const QString& text, const QFont& font, const QWidget* like,
                        const QColor& ink, const QColor& background) {
    const QFontMetrics metrics(font, like);
    QImage image(metrics.horizontalAdvance(text) + 2 * metrics.height(), 2 * metrics.height(),
                 QImage::Format_RGB32);
    image.setDotsPerMeterX(qRound(like->logicalDpiX() / 0.0254));
    image.setDotsPerMeterY(qRound(like->logicalDpiY() / 0.0254));
    image.fill(background);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(image.rect(), Qt::AlignCenter, text);
    return image;
}

// WCAG contrast ratio of two opaque colours: 1 (none) to 21 (black on white).
inline double contrastRatio(const QColor& a, const QColor& b) {
    auto luminance = [](const QColor& c) {
        auto channel = [](int v) {
            const double s = v / 255.0;
            return s <= 0.03928 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * channel(c.red()) + 0.7152 * channel(c.green()) + 0.0722 * channel(c.blue());
    };
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

}  // namespace composed
