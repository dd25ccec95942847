#pragma once

#include <qwt_plot_picker.h>

#include <QLineF>
#include <QPointF>
#include <QString>
#include <optional>

class QwtPlotCurve;

// Shows, beside the mouse, the value of every visible curve of the plot at the cursor's time,
// each line written in its curve's colour. Curves that have no sample on both sides of the
// cursor are left out, so the text is empty before the first and after the last sample.
//
// The state machine and the rubber band pen are the owner's choice; the tracker shows its text
// while it is active.
class CurveTracker : public QwtPlotPicker {
public:
    // `canvas` must be the canvas of a QwtPlot.
    explicit CurveTracker(QWidget* canvas);
    ~CurveTracker() override;

    // The text box placed beside the cursor and kept inside the canvas.
    QRect trackerRect(const QFont& font) const override;

protected:
    QwtText trackerTextF(const QPointF& pos) const override;

private:
    QString curveInfoAt(const QwtPlotCurve* curve, const QPointF& pos) const;
    std::optional<QLineF> curveLineAt(const QwtPlotCurve* curve, double x) const;
};

