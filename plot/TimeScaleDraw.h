#pragma once

#include <qwt_scale_draw.h>
#include <qwt_text.h>

#include <QTime>

// Labels a time axis given in seconds as a clock time, "hh:mm:ss".
class TimeScaleDraw : public QwtScaleDraw {
public:
    // `base` is the clock time that the axis value 0 stands for.
    explicit TimeScaleDraw(const QTime& base);
    ~TimeScaleDraw() override;

    // Whole seconds after `baseTime`; fractions are dropped (3725.9 s reads 01:02:05), and a
    // day or more wraps around as the clock does.
    QwtText label(double value) const override;

private:
    QTime baseTime;
};

