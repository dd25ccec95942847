#pragma once

#include <cstdint>

// Which orientations a calibration run has visited, on a grid of 12 x 12 x 12 bins of 30
// degrees, and what share of the grid that is.
//
// All arithmetic is single precision on purpose: bin edges (29.9 -> 0, 30 -> 1, 360 -> 0) follow
// from float rounding of angle * (1/30), and the percentage of the full grid is exactly 100.
class OrientCount {
public:
    OrientCount();
    virtual ~OrientCount();

    // Marks the bin of three angles in degrees; any range, wrapped into [0, 360].
    void addOrientation(float a1, float a2, float a3);

    // Percentage of visited bins, 0 to 100.
    float getPercNotZero();

private:
    static constexpr int kBins = 12;
    static constexpr int kCells = kBins * kBins * kBins;

    // Index bin(a1) * 144 + bin(a3) * 12 + bin(a2); each cell 0 (never visited) or 1.
    std::uint8_t cells[kCells];
};

