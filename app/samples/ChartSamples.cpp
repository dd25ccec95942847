#include "ChartSamples.h"

#include <utility>

ChartSamples::ChartSamples(ColumnSlice times_, ColumnSlice values_)
    : times(std::move(times_)), values(std::move(values_)) {
    Q_ASSERT(times.firstRow() == values.firstRow() && times.endRow() == values.endRow());
}

size_t ChartSamples::size() const { return static_cast<size_t>(times.size()); }

QPointF ChartSamples::sample(size_t i) const {
    const RowNumber row = rowOf(i);
    return {times.at(row), values.at(row)};
}

// Only asked for when an axis scales itself to the data; the chart's axes are set by the window.
QRectF ChartSamples::boundingRect() const {
    if (d_boundingRect.width() < 0.0) d_boundingRect = qwtBoundingRect(*this);
    return d_boundingRect;
}

SampleRuns::Run ChartSamples::runFrom(size_t i) const {
    const RowNumber row = rowOf(i);
    std::int64_t count = 0;
    Run run;
    run.x = times.runFrom(row, count);
    run.y = values.runFrom(row, count);
    run.count = static_cast<size_t>(count);
    return run;
}
