#include "SampleColumn.h"

#include <algorithm>

namespace {

constexpr std::int64_t kOffsetMask = SampleColumn::kChunkRows - 1;

std::int64_t chunkOf(RowNumber row) { return row.value() >> SampleColumn::kChunkShift; }
std::int64_t offsetOf(RowNumber row) { return row.value() & kOffsetMask; }

}  // namespace

double ColumnSlice::at(RowNumber row) const {
    return chunks[static_cast<std::size_t>(chunkOf(row) - firstChunk)][offsetOf(row)];
}

const double* ColumnSlice::runFrom(RowNumber row, std::int64_t& count) const {
    const RowNumber chunkEnd((chunkOf(row) + 1) << SampleColumn::kChunkShift);
    count = std::min(chunkEnd, end) - row;
    return &chunks[static_cast<std::size_t>(chunkOf(row) - firstChunk)][offsetOf(row)];
}

void SampleColumn::append(double value) {
    // Chunks are allocated as rows arrive and freed when their rows leave; a chunk is never
    // reused, because a chart may still be reading it.
    if (offsetOf(end) == 0) chunks.emplace_back(new double[kChunkRows]);
    chunks.back()[offsetOf(end)] = value;
    ++end;
}

void SampleColumn::clear() {
    chunks.clear();
    firstChunk = 0;
    end = RowNumber(0);
}

void SampleColumn::dropOldestChunk() {
    if (chunks.size() < 2) return;
    chunks.pop_front();
    ++firstChunk;
}

RowNumber SampleColumn::oldestChunkLastRow() const {
    return std::min(RowNumber(((firstChunk + 1) << kChunkShift) - 1), end - 1);
}

double SampleColumn::at(RowNumber row) const {
    return chunks[static_cast<std::size_t>(chunkOf(row) - firstChunk)][offsetOf(row)];
}

ColumnSlice SampleColumn::slice(RowNumber from) const {
    ColumnSlice s;
    s.first = std::clamp(from, firstRow(), end);
    s.end = end;
    if (s.isEmpty()) return s;
    s.firstChunk = chunkOf(s.first);
    const auto begin = chunks.begin() + (s.firstChunk - firstChunk);
    s.chunks.assign(begin, chunks.end());
    return s;
}
