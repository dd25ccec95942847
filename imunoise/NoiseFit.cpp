#include "NoiseFit.h"

#include <cmath>

namespace imunoise {

namespace {

constexpr double kWhiteSlope = -0.5;
constexpr double kWalkSlope = 0.5;
// How far the local slope may stray from the line's and still count as that line's region. At
// the edge of the region the neighbouring term then adds at most a tenth of the variance.
constexpr double kSlopeTolerance = 0.1;
constexpr double kSlopeHalfWindowDecades = 0.25;
constexpr std::size_t kMinimumRegionPoints = 3;
constexpr double kWhiteTau = 1.0;
constexpr double kWalkTau = 3.0;
constexpr double kInstabilityFactor = 0.664;

struct Region {
    std::size_t first = 0, last = 0;  // inclusive
    // What the region's points are worth together: the sum of their inverse variances.
    double weight(const std::vector<AdevPoint>& curve) const {
        double sum = 0.0;
        for (std::size_t i = first; i <= last; ++i)
            sum += 1.0 / std::pow(relativeError(curve[i].clusters), 2);
        return sum;
    }
};

// The best-determined run of points whose local slope is near `slope`: where noise breaks the
// run at long cluster times, the part with more independent clusters wins.
std::optional<Region> regionOf(const std::vector<AdevPoint>& curve,
                               const std::vector<double>& slopes, double slope) {
    std::optional<Region> best;
    std::size_t runStart = 0;  // of the run that point i would extend
    for (std::size_t i = 0; i <= curve.size(); ++i) {
        const bool inside = i < curve.size() && std::abs(slopes[i] - slope) <= kSlopeTolerance;
        if (inside) continue;
        // Point i ends the run [runStart, i).
        if (i - runStart >= kMinimumRegionPoints) {
            const Region run{runStart, i - 1};
            if (!best || run.weight(curve) > best->weight(curve)) best = run;
        }
        runStart = i + 1;
    }
    return best;
}

// log σ = log C + slope · log τ with the slope fixed: log C is the weighted mean of
// log σ − slope · log τ, each point weighted by the inverse variance of its log σ.
LineFit fitLine(const std::vector<AdevPoint>& curve, const Region& region, double slope,
                double atTau) {
    double weighted = 0.0, weights = 0.0;
    std::size_t clusters = 0;
    for (std::size_t i = region.first; i <= region.last; ++i) {
        const AdevPoint& p = curve[i];
        const double error = relativeError(p.clusters);
        const double weight = 1.0 / (error * error);
        weighted += weight * (std::log(p.deviation) - slope * std::log(p.tau));
        weights += weight;
        clusters = std::max(clusters, p.clusters);
    }
    LineFit line;
    line.slope = slope;
    line.value = std::exp(weighted / weights + slope * std::log(atTau));
    line.tauFrom = curve[region.first].tau;
    line.tauTo = curve[region.last].tau;
    // Neighbouring points share most of their data: the region is worth about as much as its
    // best-determined point.
    line.relativeError = relativeError(clusters);
    return line;
}

}  // namespace

double LineFit::at(double tau) const {
    const double reference = slope < 0 ? kWhiteTau : kWalkTau;
    return value * std::pow(tau / reference, slope);
}

std::vector<double> localSlopes(const std::vector<AdevPoint>& curve) {
    std::vector<double> slopes(curve.size(), 0.0);
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const double centre = std::log10(curve[i].tau);
        double sx = 0, sy = 0, sxx = 0, sxy = 0, n = 0;
        for (const AdevPoint& p : curve) {
            const double x = std::log10(p.tau);
            if (std::abs(x - centre) > kSlopeHalfWindowDecades) continue;
            const double y = std::log10(p.deviation);
            sx += x, sy += y, sxx += x * x, sxy += x * y, n += 1;
        }
        const double spread = n * sxx - sx * sx;
        slopes[i] = n >= 2 && spread > 0 ? (n * sxy - sx * sy) / spread : 0.0;
    }
    return slopes;
}

AxisNoise fitNoise(const std::vector<AdevPoint>& curve) {
    AxisNoise noise;
    if (curve.empty()) return noise;
    const std::vector<double> slopes = localSlopes(curve);
    if (const auto white = regionOf(curve, slopes, kWhiteSlope))
        noise.white = fitLine(curve, *white, kWhiteSlope, kWhiteTau);
    if (const auto walk = regionOf(curve, slopes, kWalkSlope))
        noise.walk = fitLine(curve, *walk, kWalkSlope, kWalkTau);
    std::size_t lowest = 0;
    for (std::size_t i = 1; i < curve.size(); ++i)
        if (curve[i].deviation < curve[lowest].deviation) lowest = i;
    noise.instability = BiasInstability{curve[lowest].deviation / kInstabilityFactor,
                                        curve[lowest].tau, lowest + 1 == curve.size()};
    return noise;
}

}  // namespace imunoise
