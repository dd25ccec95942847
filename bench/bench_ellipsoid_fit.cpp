// Cost of one magnetometer calibration over a growing cloud of noisy samples. The dialog refits
// every 50 new samples on the GUI thread, so the time per fit bounds how long a session can
// grow before the refresh stalls.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "mag_calib.h"

namespace {

struct Cloud {
    Eigen::VectorXd x, y, z;
};

// Raw samples of an offset, squashed field seen from random directions, with sensor noise.
Cloud noisyCloud(Eigen::Index n) {
    std::mt19937 random(7);
    std::normal_distribution<double> gauss(0.0, 1.0);
    Cloud cloud{Eigen::VectorXd(n), Eigen::VectorXd(n), Eigen::VectorXd(n)};
    for (Eigen::Index i = 0; i < n; ++i) {
        Eigen::Vector3d direction(gauss(random), gauss(random), gauss(random));
        direction.normalize();
        cloud.x(i) = 12.0 + 40.0 * direction.x() + 0.3 * gauss(random);
        cloud.y(i) = -7.0 + 25.0 * direction.y() + 0.3 * gauss(random);
        cloud.z(i) = 30.0 + 55.0 * direction.z() + 0.3 * gauss(random);
    }
    return cloud;
}

void BM_EllipsoidCalibration(benchmark::State& state) {
    Cloud cloud = noisyCloud(state.range(0));
    MagCalib calib;
    for (auto _ : state) {
        benchmark::DoNotOptimize(calib.ellipsoidCalibration(cloud.x, cloud.y, cloud.z, 1.0));
        benchmark::DoNotOptimize(calib.scale);
    }
    state.counters["samples_per_s"] = benchmark::Counter(
        static_cast<double>(state.iterations() * state.range(0)), benchmark::Counter::kIsRate);
}

}  // namespace

BENCHMARK(BM_EllipsoidCalibration)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMicrosecond);
