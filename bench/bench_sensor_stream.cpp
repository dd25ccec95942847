// How fast the simulated camera serves sensor records, and what a 400 Hz polling loop costs.
#include <benchmark/benchmark.h>

#include <bw/Camera.hpp>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <chrono>
#include <cstdint>
#include <ctime>

namespace {

double threadCpuSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

bw::sim::DeviceConfig oneCamera() {
    bw::sim::DeviceConfig config;
    config.model = bw::MODEL::ORYX_D;
    config.serial = bw::sim::DeviceConfig::defaultSerial(config.model, 0);
    return config;
}

bool openCamera(bw::Camera& camera, unsigned serial) {
    bw::InitParameters parameters;
    parameters.input.setFromSerialNumber(serial);
    return camera.open(parameters) == bw::SUCCESS;
}

// Virtual time runs freely: every call that finds nothing new moves the clock to the next IMU
// sample, so this measures the cost of serving one record.
void BM_RecordsServedOnVirtualClock(benchmark::State& state) {
    bw::sim::VirtualTimeScope virtualTime;
    bw::sim::Clock::setAutoAdvanceLimit(UINT64_MAX);
    const bw::sim::DeviceConfig config = oneCamera();
    bw::sim::Bus::instance().load({config});
    bw::Camera camera;
    if (!openCamera(camera, config.serial)) {
        state.SkipWithError("camera did not open");
        return;
    }
    bw::SensorsData data;
    std::uint64_t last = 0, fresh = 0;
    for (auto _ : state) {
        camera.getSensorsData(data, bw::TIME_REFERENCE::CURRENT);
        if (data.imu.timestamp != last) {
            ++fresh;
            last = data.imu.timestamp;
        }
        benchmark::DoNotOptimize(data);
    }
    state.counters["new_records_per_s"] =
        benchmark::Counter(static_cast<double>(fresh), benchmark::Counter::kIsRate);
    camera.close();
}
BENCHMARK(BM_RecordsServedOnVirtualClock);

// Real time, 400 Hz camera, a reader that polls as fast as the camera answers (as the viewer's
// sampling thread does). Reports the reader's CPU time per second of wall time.
void BM_PollingLoopCpuShare(benchmark::State& state) {
    bw::sim::Clock::useRealTime();
    const bw::sim::DeviceConfig config = oneCamera();
    bw::sim::Bus::instance().load({config});
    bw::Camera camera;
    if (!openCamera(camera, config.serial)) {
        state.SkipWithError("camera did not open");
        return;
    }
    bw::SensorsData data;
    const double seconds = static_cast<double>(state.range(0));
    double cpu = 0.0, wall = 0.0;
    std::uint64_t fresh = 0, calls = 0;
    for (auto _ : state) {
        const auto wallStart = std::chrono::steady_clock::now();
        const double cpuStart = threadCpuSeconds();
        std::uint64_t last = 0;
        while (std::chrono::duration<double>(std::chrono::steady_clock::now() - wallStart).count() <
               seconds) {
            camera.getSensorsData(data, bw::TIME_REFERENCE::CURRENT);
            ++calls;
            if (data.imu.timestamp != last) {
                ++fresh;
                last = data.imu.timestamp;
            }
        }
        cpu += threadCpuSeconds() - cpuStart;
        wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - wallStart).count();
    }
    state.counters["cpu_percent_of_core"] = 100.0 * cpu / wall;
    state.counters["records_per_s"] = static_cast<double>(fresh) / wall;
    state.counters["calls_per_s"] = static_cast<double>(calls) / wall;
    camera.close();
}
BENCHMARK(BM_PollingLoopCpuShare)->Arg(5)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
