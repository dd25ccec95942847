// Rows of the sample series are numbered from the first row appended since the series were last
// cleared. A row keeps its number while old rows leave the series, so a number stays valid for
// as long as its row is kept; positions inside what a reader holds (a chart's sample index) are
// plain ints and never mixed up with row numbers.
#pragma once

#include <cstdint>

class RowNumber {
public:
    constexpr RowNumber() = default;
    constexpr explicit RowNumber(std::int64_t number) : n(number) {}

    constexpr std::int64_t value() const { return n; }

    constexpr RowNumber& operator++() {
        ++n;
        return *this;
    }
    friend constexpr RowNumber operator+(RowNumber row, std::int64_t rows) {
        return RowNumber(row.n + rows);
    }
    friend constexpr RowNumber operator-(RowNumber row, std::int64_t rows) {
        return RowNumber(row.n - rows);
    }
    // How many rows lie between two row numbers.
    friend constexpr std::int64_t operator-(RowNumber end, RowNumber begin) {
        return end.n - begin.n;
    }

    friend constexpr bool operator==(RowNumber a, RowNumber b) { return a.n == b.n; }
    friend constexpr bool operator!=(RowNumber a, RowNumber b) { return a.n != b.n; }
    friend constexpr bool operator<(RowNumber a, RowNumber b) { return a.n < b.n; }
    friend constexpr bool operator<=(RowNumber a, RowNumber b) { return a.n <= b.n; }
    friend constexpr bool operator>(RowNumber a, RowNumber b) { return a.n > b.n; }
    friend constexpr bool operator>=(RowNumber a, RowNumber b) { return a.n >= b.n; }

private:
    std::int64_t n = 0;
};
