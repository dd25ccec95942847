// The Allan deviation and the noise fits on series whose answer is known.
#include <QtTest>
#include <cmath>
#include <random>

#include "AllanDeviation.h"
#include "NoiseFit.h"

using namespace imunoise;

namespace {

// The textbook estimator: averages of m samples, the mean square of neighbouring differences.
double directDeviation(const std::vector<float>& y, std::size_t m) {
    double sum = 0.0;
    std::size_t terms = 0;
    for (std::size_t k = 0; k + 2 * m <= y.size(); ++k, ++terms) {
        double first = 0.0, second = 0.0;
        for (std::size_t i = 0; i < m; ++i) first += y[k + i], second += y[k + m + i];
        const double d = (second - first) / static_cast<double>(m);
        sum += d * d;
    }
    return std::sqrt(sum / (2.0 * static_cast<double>(terms)));
}

std::vector<float> whiteNoise(std::size_t n, double sigma, unsigned seed, double offset = 0.0) {
    std::mt19937_64 generator(seed);
    std::normal_distribution<double> normal(0.0, sigma);
    std::vector<float> y(n);
    for (float& v : y) v = static_cast<float>(offset + normal(generator));
    return y;
}

// The curve that white noise N and a random walk K give: σ² = N²/τ + K²τ/3.
std::vector<AdevPoint> idealCurve(double n, double k, std::size_t samples, double period) {
    std::vector<AdevPoint> curve;
    for (const std::size_t m : clusterSizes(samples)) {
        AdevPoint p;
        p.tau = static_cast<double>(m) * period;
        p.deviation = std::sqrt(n * n / p.tau + k * k * p.tau / 3.0);
        p.clusters = samples / m;
        curve.push_back(p);
    }
    return curve;
}

}  // namespace

class TestAllanDeviation : public QObject {
    Q_OBJECT

private slots:
    void equalsTheDirectEstimator() {
        // A series with an offset and a trend, so that neither the mean removal nor the running
        // sums can hide a fault.
        std::vector<float> y = whiteNoise(4000, 0.3, 7, 5.0);
        for (std::size_t i = 0; i < y.size(); ++i) y[i] += static_cast<float>(1e-4 * double(i));
        std::vector<double> sums;
        runningSums(y, 2.0, sums);
        const double period = 0.01;
        const std::vector<std::size_t> sizes = {1, 2, 3, 7, 50, 400};
        for (const int threads : {1, 3}) {
            const std::vector<AdevPoint> curve = allanDeviation(sums, period, sizes, threads);
            QCOMPARE(curve.size(), sizes.size());
            for (std::size_t i = 0; i < sizes.size(); ++i) {
                const double expected = 2.0 * directDeviation(y, sizes[i]);
                QVERIFY2(std::abs(curve[i].deviation / expected - 1.0) < 1e-9,
                         qPrintable(QStringLiteral("m = %1: %2 instead of %3")
                                        .arg(sizes[i])
                                        .arg(curve[i].deviation)
                                        .arg(expected)));
                QCOMPARE(curve[i].tau, double(sizes[i]) * period);
                QCOMPARE(curve[i].clusters, y.size() / sizes[i]);
                QVERIFY(curve[i].lower < curve[i].deviation && curve[i].deviation < curve[i].upper);
            }
        }
    }

    void clusterTimesSpanOneSampleToATenthAtTenPerDecade() {
        for (const std::size_t n : {std::size_t(100), std::size_t(123457), std::size_t(4320000)}) {
            const std::vector<std::size_t> sizes = clusterSizes(n);
            QCOMPARE(sizes.front(), std::size_t(1));
            QVERIFY(sizes.back() <= n / 10);
            QVERIFY2(sizes.back() * 1.26 > n / 10, "reaches close to a tenth of the series");
            // Every decade from a point of the grid (both ends counted) holds at least 10.
            for (std::size_t i = 0; i < sizes.size(); ++i) {
                const auto inDecade =
                    std::count_if(sizes.begin() + long(i), sizes.end(),
                                  [&](std::size_t m) { return m <= 10 * sizes[i]; });
                if (sizes[i] * 10 <= sizes.back()) QVERIFY(inDecade >= 10);
            }
        }
    }

    void whiteNoiseFallsWithSlopeMinusHalf() {
        const double period = 0.01, sigma = 0.02;  // N = σ √Δt
        const std::vector<float> y = whiteNoise(200000, sigma, 11);
        std::vector<double> sums;
        runningSums(y, 1.0, sums);
        const auto curve = allanDeviation(sums, period, clusterSizes(y.size()), 2);
        const AxisNoise noise = fitNoise(curve);
        QVERIFY(noise.white);
        QVERIFY2(std::abs(noise.white->value / (sigma * std::sqrt(period)) - 1.0) < 0.02,
                 qPrintable(QString::number(noise.white->value)));
        QVERIFY2(!noise.walk, "white noise has no random walk");
        QVERIFY2(noise.instability->atEnd, "the curve still falls at its end");
    }

    void fitsFindBothLinesInTheirRegions() {
        const double n = 2e-3, k = 4e-4, period = 0.0025;
        const std::size_t samples = 4'320'000;  // three hours at 400 Hz
        const std::vector<AdevPoint> curve = idealCurve(n, k, samples, period);
        const AxisNoise noise = fitNoise(curve);
        QVERIFY(noise.white && noise.walk && noise.instability);
        QVERIFY2(std::abs(noise.white->value / n - 1.0) < 0.01,
                 qPrintable(QString::number(noise.white->value)));
        QVERIFY2(std::abs(noise.walk->value / k - 1.0) < 0.05,
                 qPrintable(QString::number(noise.walk->value)));
        // The two terms are equal at τ = √3 N / K ≈ 8.7 s: each region stays on its side.
        const double crossing = std::sqrt(3.0) * n / k;
        QVERIFY(noise.white->tauFrom <= 2 * period && noise.white->tauTo < crossing);
        QVERIFY(noise.walk->tauFrom > crossing && noise.walk->tauTo > 100.0);
        QVERIFY(std::abs(noise.instability->tau / crossing - 1.0) < 0.3);
        const double minimum = std::sqrt(2.0 * n * k / std::sqrt(3.0));
        QVERIFY(std::abs(noise.instability->value * 0.664 / minimum - 1.0) < 0.02);
        QVERIFY(!noise.instability->atEnd);
    }

    void aFlatCurveHasNeitherLine() {
        std::vector<AdevPoint> curve = idealCurve(1e-3, 0.0, 100000, 0.01);
        for (AdevPoint& p : curve) p.deviation = 1e-3 * (1.0 + 0.01 * std::sin(p.tau));
        const AxisNoise noise = fitNoise(curve);
        QVERIFY(!noise.white);
        QVERIFY(!noise.walk);
        QVERIFY(noise.instability);
    }
};

QTEST_GUILESS_MAIN(TestAllanDeviation)
#include "tst_allandeviation.moc"
