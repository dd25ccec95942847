// Curve samples that lie in a few runs of plain arrays, as a chunked store keeps them: the chart
// reads a run at a time instead of asking for every sample through a virtual call.
#pragma once

#include <qwt_series_data.h>

#include <QPointF>
#include <cstddef>

class SampleRuns : public QwtSeriesData<QPointF> {
public:
    // Times x[k] and values y[k] of `count` samples that follow one another.
    struct Run {
        const double* x = nullptr;
        const double* y = nullptr;
        std::size_t count = 0;
    };

    // The run that starts at sample i (i < size()); it holds at least that one sample.
    virtual Run runFrom(std::size_t i) const = 0;
};
