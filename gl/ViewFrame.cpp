#include "ViewFrame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

// Length of a triad segment for a unit component, as DynAxis::draw lays them out.
constexpr float kTriadLength = 0.15f;
// A point this close to the eye plane has no meaningful place on screen.
constexpr float kNearestW = 1e-6f;

struct ScreenPoint {
    bool visible = false;
    float x = 0.f, y = 0.f;  // normalised device coordinates
};

ScreenPoint project(const bw::Matrix4f& mvp, const bw::Vector3<float>& p) {
    const auto row = [&](int r) {
        return mvp(r, 0) * p.x + mvp(r, 1) * p.y + mvp(r, 2) * p.z + mvp(r, 3);
    };
    const float w = row(3);
    if (w <= kNearestW) return {};
    return {true, row(0) / w, row(1) / w};
}

std::array<bw::Vector3<float>, 3> triadTips(const bw::Vector3<float>& g) {
    return {bw::Vector3<float>(-kTriadLength * g.x, 0.f, 0.f),
            bw::Vector3<float>(0.f, -kTriadLength * g.y, 0.f),
            bw::Vector3<float>(0.f, 0.f, -kTriadLength * g.z)};
}

// Whether a point drawn at `from` now lands at `to` at least kVisibleShiftPx away; a point that
// is behind the eye in either frame counts as moved unless it stayed where it was.
bool shifted(const ScreenPoint& from, const ScreenPoint& to, bool samePlace, float pxPerUnit) {
    if (!from.visible || !to.visible) return !samePlace;
    return std::hypot(to.x - from.x, to.y - from.y) * pxPerUnit >= kVisibleShiftPx;
}

bool sameView(const ViewFrame& a, const ViewFrame& b) {
    return a.scene == b.scene && a.width == b.width && a.height == b.height &&
           a.viewProjection == b.viewProjection && a.movingState == b.movingState;
}

}  // namespace

bool looksDifferent(const ViewFrame& drawn, const ViewFrame& now,
                    const std::vector<bw::Vector3<float>>& modelPoints) {
    if (!sameView(drawn, now)) return true;
    const bool samePose = drawn.model == now.model;
    if (samePose && drawn.gravity == now.gravity) return false;
    // The viewport is the square of side max(width, height) centred on the view: one unit of
    // device coordinates is half that side.
    const float pxPerUnit = 0.5f * std::max(now.width, now.height);
    const bw::Matrix4f before = drawn.viewProjection * drawn.model;
    const bw::Matrix4f after = now.viewProjection * now.model;
    for (const bw::Vector3<float>& p : modelPoints) {
        if (shifted(project(before, p), project(after, p), samePose, pxPerUnit)) return true;
    }
    const auto tipsBefore = triadTips(drawn.gravity);
    const auto tipsAfter = triadTips(now.gravity);
    for (std::size_t i = 0; i < tipsBefore.size(); ++i) {
        const bool samePlace = samePose && tipsBefore[i] == tipsAfter[i];
        if (shifted(project(before, tipsBefore[i]), project(after, tipsAfter[i]), samePlace,
                    pxPerUnit))
            return true;
    }
    return false;
}

std::vector<bw::Vector3<float>> boundingBoxCorners(const std::vector<float>& xyz) {
    if (xyz.size() < 3) return {};
    constexpr float kMax = std::numeric_limits<float>::max();
    bw::Vector3<float> low(kMax, kMax, kMax), high(-kMax, -kMax, -kMax);
    for (std::size_t i = 0; i + 2 < xyz.size(); i += 3) {
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], xyz[i + axis]);
            high[axis] = std::max(high[axis], xyz[i + axis]);
        }
    }
    std::vector<bw::Vector3<float>> corners;
    for (int c = 0; c < 8; ++c) {
        corners.emplace_back((c & 1) ? high.x : low.x, (c & 2) ? high.y : low.y,
                             (c & 4) ? high.z : low.z);
    }
    return corners;
}
