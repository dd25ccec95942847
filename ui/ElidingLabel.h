// A one-line label that gives way when its row is short of room: down to the width of a shorter
// text its owner names, it draws its text cut at the end with an ellipsis instead of widening
// the window. text() keeps the whole text.
#pragma once

#include <QLabel>

class ElidingLabel : public QLabel {
public:
    explicit ElidingLabel(QWidget* parent = nullptr);

    // The narrowest the label becomes: as wide as `text`, for example the start of its own text
    // that must stay whole, and an ellipsis.
    void setShortestText(const QString& text);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect textArea() const;
    bool isCut() const;

    QString shortest;
};
