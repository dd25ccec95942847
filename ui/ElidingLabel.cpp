#include "ElidingLabel.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>

ElidingLabel::ElidingLabel(QWidget* parent) : QLabel(parent) {}

void ElidingLabel::setShortestText(const QString& text) {
    shortest = text;
    updateGeometry();
}

QSize ElidingLabel::minimumSizeHint() const {
    const QSize whole = QLabel::minimumSizeHint();
    if (shortest.isEmpty()) return whole;
    const int around = width() - textArea().width();
    return {std::min(whole.width(), fontMetrics().horizontalAdvance(shortest) + around),
            whole.height()};
}

void ElidingLabel::paintEvent(QPaintEvent* event) {
    if (!isCut()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    drawFrame(&painter);
    const QRect area = textArea();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, area.width());
    style()->drawItemText(&painter, area, QStyle::visualAlignment(layoutDirection(), alignment()),
                          palette(), isEnabled(), shown, foregroundRole());
}

QRect ElidingLabel::textArea() const {
    return contentsRect().adjusted(margin(), margin(), -margin(), -margin());
}

bool ElidingLabel::isCut() const {
    return fontMetrics().horizontalAdvance(text()) > textArea().width();
}
