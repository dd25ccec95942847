#include "orientcount.h"

#include <cmath>
#include <cstring>

namespace {

// Into [0, 360]: 360 itself is left alone and lands in bin 12, which binOf wraps to 0.
float wrapDegrees(float angle) {
    while (angle > 360.0f) {
        angle -= 360.0f;
    }
    while (angle < 0.0f) {
        angle += 360.0f;
    }
    return angle;
}

// Multiplying by the float 1/30 (rather than dividing by 30) decides which bin an angle right
// at an edge falls into; keep it.
std::int32_t binOf(float angle) {
    constexpr float kInvBinWidth = 1.0f / 30.0f;
    auto bin = static_cast<std::int32_t>(std::floor(wrapDegrees(angle) * kInvBinWidth));
    while (bin < 0) {
        bin += 12;
    }
    while (bin > 11) {
        bin -= 12;
    }
    return bin;
}

}  // namespace

OrientCount::OrientCount() { std::memset(cells, 0, sizeof(cells)); }

OrientCount::~OrientCount() = default;

void OrientCount::addOrientation(float a1, float a2, float a3) {
    const std::int32_t index = binOf(a1) * kBins * kBins + binOf(a3) * kBins + binOf(a2);
    cells[index] = 1;
}

float OrientCount::getPercNotZero() {
    int visited = 0;
    for (std::uint8_t cell : cells) {
        visited += cell;
    }
    return static_cast<float>(visited) * 100.0f / 1728.0f;
}
