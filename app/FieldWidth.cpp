#include "FieldWidth.h"

#include <QFontMetrics>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionFrame>
#include <algorithm>

namespace {

// QLineEdit keeps this many pixels free inside its contents on either side of the text; the
// value is its own and not published.
constexpr int kInnerMargin = 2;

int widestAdvance(const QFontMetrics& metrics, const QStringList& texts) {
    int widest = 0;
    for (const QString& text : texts) widest = std::max(widest, metrics.horizontalAdvance(text));
    return widest;
}

}  // namespace

int widthShowingWhole(const QLineEdit& field, const QStringList& texts) {
    QStyle* style = field.style();
    // A line edit scrolls once the text, a pixel and the cursor no longer fit.
    const int cursor = style->pixelMetric(QStyle::PM_TextCursorWidth, nullptr, &field);
    const QMargins text = field.textMargins();
    const QMargins contents = field.contentsMargins();
    const int inner = widestAdvance(field.fontMetrics(), texts) + 1 + cursor + 2 * kInnerMargin +
                      text.left() + text.right() + contents.left() + contents.right();
    // The frame, the border and the padding of the style (sheet) around it, as the line edit's
    // own size hint counts them.
    QStyleOptionFrame option;
    option.initFrom(&field);
    option.lineWidth =
        field.hasFrame() ? style->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &field) : 0;
    option.state |= QStyle::State_Sunken;
    if (field.isReadOnly()) option.state |= QStyle::State_ReadOnly;
    return style
        ->sizeFromContents(QStyle::CT_LineEdit, &option, QSize(inner, field.height()), &field)
        .width();
}
