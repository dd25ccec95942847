// The points of one chart curve, read in place from the sample store: times from one series,
// values from another, the same rows of each. Nothing is copied; the slices keep the rows alive
// for as long as the curve shows them, whatever the sampling thread appends or lets go of.
#pragma once

#include <QPointF>
#include <QRectF>

#include "SampleColumn.h"
#include "SampleRuns.h"

class ChartSamples : public SampleRuns {
public:
    // Both slices must cover the same rows.
    ChartSamples(ColumnSlice times, ColumnSlice values);

    size_t size() const override;
    QPointF sample(size_t i) const override;
    QRectF boundingRect() const override;
    Run runFrom(size_t i) const override;

private:
    RowNumber rowOf(size_t i) const { return times.firstRow() + static_cast<std::int64_t>(i); }

    ColumnSlice times;
    ColumnSlice values;
};
