// One sample series: doubles appended at the newest end and let go of at the oldest, a chunk of
// rows at a time, so that a series can run for days in a fixed amount of memory. Rows are
// addressed by their RowNumber, which a row keeps for as long as it is kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "RowNumber.h"

// Rows of a column as they stood when the slice was taken, readable without the data lock: the
// slice shares the chunks that hold its rows, rows once written never change, and a chunk that
// the column lets go of lives on for as long as a slice still holds it.
class ColumnSlice {
public:
    ColumnSlice() = default;

    RowNumber firstRow() const { return first; }
    RowNumber endRow() const { return end; }
    std::int64_t size() const { return end - first; }
    bool isEmpty() const { return end == first; }
    double at(RowNumber row) const;  // firstRow() <= row < endRow()

    // The values from `row` on that lie one after the other in memory: `count` of them, at least
    // one for a row of the slice.
    const double* runFrom(RowNumber row, std::int64_t& count) const;

private:
    friend class SampleColumn;

    std::vector<std::shared_ptr<const double[]>> chunks;  // chunks[0] holds firstChunk
    std::int64_t firstChunk = 0;
    RowNumber first, end;
};

class SampleColumn {
public:
    static constexpr int kChunkShift = 12;
    static constexpr std::int64_t kChunkRows = std::int64_t{1} << kChunkShift;
    static constexpr std::size_t kChunkBytes =
        static_cast<std::size_t>(kChunkRows) * sizeof(double);

    SampleColumn() = default;
    // Copies would share the chunk being written.
    SampleColumn(const SampleColumn&) = delete;
    SampleColumn& operator=(const SampleColumn&) = delete;

    void append(double value);
    // Forgets every row; numbering starts again at row 0.
    void clear();
    // The rows of the oldest chunk leave the column. The chunk holding the newest row stays.
    void dropOldestChunk();

    RowNumber firstRow() const { return RowNumber(firstChunk << kChunkShift); }
    RowNumber endRow() const { return end; }
    std::int64_t size() const { return end - firstRow(); }
    bool isEmpty() const { return chunks.empty(); }
    int chunkCount() const { return static_cast<int>(chunks.size()); }
    // The newest row of the oldest chunk: when it is too old, the whole chunk is.
    RowNumber oldestChunkLastRow() const;

    double at(RowNumber row) const;  // firstRow() <= row < endRow()
    double first() const { return at(firstRow()); }
    double last() const { return at(end - 1); }

    // Memory held for the values.
    std::size_t bytes() const { return chunks.size() * kChunkBytes; }

    // Rows from `from` (or the first kept row, if that is later) to the newest.
    ColumnSlice slice(RowNumber from) const;

private:
    std::deque<std::shared_ptr<double[]>> chunks;  // chunks[0] holds firstChunk
    std::int64_t firstChunk = 0;                   // absolute: row >> kChunkShift
    RowNumber end;
};
