// The IMU noise analysis of a three-hour, 400 Hz recording of every group (4.3 M rows, about
// 1.1 GB), written first by the viewer's CSV writer from a simulated still camera. Reports the
// time and the peak resident memory of the analysis, reading included, and the same for a plain
// direct implementation of the same estimator, run side by side: the replay reader row by row,
// every axis in doubles, the running sums and the cluster times on one thread. Processor times
// are given beside the wall times, which a loaded machine stretches.
//
// The recording goes to $TMPDIR (or /tmp) and is deleted at the end.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QCoreApplication>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "NoiseAnalysis.h"
#include "ProcessCpu.h"
#include "RecordingFile.h"
#include "SimulatedRecording.h"

namespace {

constexpr double kSeconds = 3.0 * 3600.0;

std::string recordingPath() {
    const char* tmp = std::getenv("TMPDIR");
    return std::string(tmp ? tmp : "/tmp") + "/bench-imu-noise-" + std::to_string(::getpid()) +
           "-ORYXSensorsData.csv";
}

// Peak resident memory since the last reset, in MiB (VmHWM; reset through clear_refs).
void resetPeakResident() { std::ofstream("/proc/self/clear_refs") << "5"; }

double peakResidentMiB() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmHWM:", 0) == 0) return std::atof(line.c_str() + 6) / 1024.0;
    }
    return 0.0;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The direct implementation: what one writes first, with the same cluster sizes and fits.
imunoise::NoiseReport directAnalysis(const std::string& path) {
    using recording::Column;
    imunoise::NoiseReport report;
    recording::Problem problem;
    auto file = recording::RecordingFile::open(path, problem);
    if (!file) {
        report.refusal = problem.text;
        return report;
    }
    std::array<std::vector<double>, imunoise::kAxisCount> values;
    std::vector<double> times;
    recording::Row row;
    for (int i = 0; i < file->rowCount() && file->read(i, row); ++i) {
        times.push_back(row[Column::IMU_TIME]);
        for (const imunoise::ImuAxis axis : imunoise::kAxes)
            values[imunoise::indexOf(axis)].push_back(row[imunoise::columnOf(axis)] *
                                                      imunoise::toSi(axis));
    }
    const double period = (times.back() - times.front()) / static_cast<double>(times.size() - 1);
    const std::vector<std::size_t> sizes = imunoise::clusterSizes(times.size());
    for (const imunoise::ImuAxis axis : imunoise::kAxes) {
        const std::vector<double>& y = values[imunoise::indexOf(axis)];
        std::vector<double> theta(y.size() + 1, 0.0);
        for (std::size_t i = 0; i < y.size(); ++i) theta[i + 1] = theta[i] + y[i];
        imunoise::AxisResult& result = report.axes[imunoise::indexOf(axis)];
        for (const std::size_t m : sizes) {
            double sum = 0.0;
            const std::size_t terms = y.size() - 2 * m + 1;
            for (std::size_t k = 0; k < terms; ++k) {
                const double d = theta[k + 2 * m] - 2.0 * theta[k + m] + theta[k];
                sum += d * d;
            }
            imunoise::AdevPoint point;
            point.tau = static_cast<double>(m) * period;
            point.deviation =
                std::sqrt(sum / (2.0 * static_cast<double>(m * m) * static_cast<double>(terms)));
            point.clusters = y.size() / m;
            result.curve.push_back(point);
        }
        result.present = true;
        result.noise = imunoise::fitNoise(result.curve);
    }
    report.rateHz = 1.0 / period;
    report.samples = times.size();
    return report;
}

class Recording {
public:
    Recording() : path_(recordingPath()) {
        bw::sim::DeviceConfig camera;
        camera.motion = bw::sim::MotionProfile::Still;
        QString error;
        rows_ = recordSimulatedCamera(camera, kSeconds, everyGroupRecording(),
                                      QString::fromStdString(path_), error);
        if (rows_ < 0) error_ = error.toStdString();
        std::ifstream file(path_, std::ios::binary | std::ios::ate);
        bytes_ = static_cast<double>(file.tellg());
    }
    ~Recording() { std::remove(path_.c_str()); }

    const std::string& path() const { return path_; }
    long rows() const { return rows_; }
    double bytes() const { return bytes_; }
    const std::string& error() const { return error_; }

private:
    std::string path_;
    long rows_ = 0;
    double bytes_ = 0.0;
    std::string error_;
};

void BM_ThreeHourRecording(benchmark::State& state) {
    static const Recording recording;
    if (!recording.error().empty()) {
        state.SkipWithError(recording.error().c_str());
        return;
    }
    double fastCpu = 0, directCpu = 0;
    double fast = 0, direct = 0, fastMiB = 0, directMiB = 0, gyroN = 0, gyroNDirect = 0;
    for (auto _ : state) {
        resetPeakResident();
        const double cpuStart = processCpuSeconds();
        const auto start = std::chrono::steady_clock::now();
        const imunoise::NoiseReport report = imunoise::analyseRecording(recording.path());
        fast = secondsSince(start);
        fastCpu = processCpuSeconds() - cpuStart;
        fastMiB = peakResidentMiB();
        if (!report.analysed()) {
            state.SkipWithError(report.refusal.c_str());
            return;
        }
        state.SetIterationTime(fast);
        gyroN = report[imunoise::ImuAxis::GYRO_X].noise.white->value;

        resetPeakResident();
        const double directCpuStart = processCpuSeconds();
        const auto directStart = std::chrono::steady_clock::now();
        const imunoise::NoiseReport plain = directAnalysis(recording.path());
        direct = secondsSince(directStart);
        directCpu = processCpuSeconds() - directCpuStart;
        directMiB = peakResidentMiB();
        if (plain[imunoise::ImuAxis::GYRO_X].noise.white)
            gyroNDirect = plain[imunoise::ImuAxis::GYRO_X].noise.white->value;
    }
    state.counters["rows"] = static_cast<double>(recording.rows());
    state.counters["file_MB"] = recording.bytes() / 1e6;
    state.counters["analysis_s"] = fast;
    // Wall time depends on what else the machine runs; processor time much less so.
    state.counters["analysis_cpu_s"] = fastCpu;
    state.counters["direct_cpu_s"] = directCpu;
    state.counters["peak_resident_MiB"] = fastMiB;
    state.counters["direct_s"] = direct;
    state.counters["direct_peak_resident_MiB"] = directMiB;
    state.counters["direct_over_analysis"] = direct / fast;
    // Both estimate the same thing: the gyroscope x noise density, relative difference.
    state.counters["gyroX_N_difference"] = std::abs(gyroN / gyroNDirect - 1.0);
}
BENCHMARK(BM_ThreeHourRecording)->UseManualTime()->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);  // the CSV writer's QFile wants one
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
