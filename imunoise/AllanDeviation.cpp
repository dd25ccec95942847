#include "AllanDeviation.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace imunoise {

std::vector<std::size_t> clusterSizes(std::size_t samples) {
    std::vector<std::size_t> sizes;
    const std::size_t largest = samples / 10;
    constexpr int kPerDecade = 10;
    for (int step = 0;; ++step) {
        const double grid = std::pow(10.0, static_cast<double>(step) / kPerDecade);
        std::size_t m = static_cast<std::size_t>(std::llround(grid));
        if (!sizes.empty()) m = std::max(m, sizes.back() + 1);
        if (m > largest) break;
        sizes.push_back(m);
    }
    return sizes;
}

double relativeError(std::size_t clusters) {
    if (clusters < 2) return 1.0;
    return 1.0 / std::sqrt(2.0 * static_cast<double>(clusters - 1));
}

void runningSums(const std::vector<float>& values, double scale, std::vector<double>& sums) {
    double mean = 0.0;
    for (const float v : values) mean += v;
    mean /= static_cast<double>(std::max<std::size_t>(values.size(), 1));
    sums.resize(values.size() + 1);
    sums[0] = 0.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        sum += (values[i] - mean) * scale;
        sums[i + 1] = sum;
    }
}

namespace {

// Sum over k of (θ[k+2m] − 2θ[k+m] + θ[k])², in four independent lanes so that the additions
// can overlap.
double secondDifferenceEnergy(const double* theta, std::size_t terms, std::size_t m) {
    double lane[4] = {0.0, 0.0, 0.0, 0.0};
    std::size_t k = 0;
    for (; k + 4 <= terms; k += 4) {
        for (std::size_t j = 0; j < 4; ++j) {
            const double d = theta[k + j + 2 * m] - 2.0 * theta[k + j + m] + theta[k + j];
            lane[j] += d * d;
        }
    }
    for (; k < terms; ++k) {
        const double d = theta[k + 2 * m] - 2.0 * theta[k + m] + theta[k];
        lane[0] += d * d;
    }
    return (lane[0] + lane[1]) + (lane[2] + lane[3]);
}

AdevPoint pointAt(const std::vector<double>& sums, double period, std::size_t m) {
    const std::size_t samples = sums.size() - 1;
    const std::size_t terms = samples - 2 * m + 1;
    const double energy = secondDifferenceEnergy(sums.data(), terms, m);
    const double md = static_cast<double>(m);
    AdevPoint point;
    point.tau = md * period;
    point.deviation = std::sqrt(energy / (2.0 * md * md * static_cast<double>(terms)));
    point.clusters = samples / m;
    const double error = relativeError(point.clusters);
    point.lower = point.deviation * std::max(0.0, 1.0 - error);
    point.upper = point.deviation * (1.0 + error);
    return point;
}

}  // namespace

std::vector<AdevPoint> allanDeviation(const std::vector<double>& sums, double period,
                                      const std::vector<std::size_t>& sizes, int threads,
                                      const std::function<bool()>& keepGoing) {
    std::vector<AdevPoint> points(sizes.size());
    if (sums.size() < 2) return {};
    const std::size_t samples = sums.size() - 1;
    std::atomic<std::size_t> next{0};
    std::atomic<bool> stopped{false};
    // The largest clusters first: sizes then end together rather than one worker finishing alone.
    auto work = [&](bool asks) {
        for (;;) {
            if (stopped.load()) return;
            const std::size_t i = next.fetch_add(1);
            if (i >= sizes.size()) return;
            const std::size_t m = sizes[sizes.size() - 1 - i];
            if (2 * m <= samples) points[sizes.size() - 1 - i] = pointAt(sums, period, m);
            if (asks && keepGoing && !keepGoing()) stopped.store(true);
        }
    };
    std::vector<std::thread> helpers;
    for (int i = 1; i < threads; ++i) helpers.emplace_back(work, false);
    work(true);
    for (std::thread& helper : helpers) helper.join();
    if (stopped.load()) return {};
    points.erase(std::remove_if(points.begin(), points.end(),
                                [](const AdevPoint& p) { return p.clusters == 0; }),
                 points.end());
    return points;
}

}  // namespace imunoise
