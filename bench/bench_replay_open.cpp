// Opening and seeking recordings for replay, on files of 10 MB, 100 MB and 1 GB that the
// benchmark writes itself (every group, 400 Hz rows, as the recorder writes them). Reports the
// resident memory that opening and seeking added, which must not grow with the file.
//
// The files go to $TMPDIR (or /tmp) and are deleted at the end.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

#include "RecordingFile.h"

namespace {

const char* const kHeader =
    "idx,imu_Timestamp[sec],mag_Timestamp[sec],baro_Timestamp[sec],accX[m/s^2],accY[m/s^2],"
    "accZ[m/s^2],gyroX[deg/s],gyroY[deg/s],gyroZ[deg/s],magX[uT],magY[uT],magZ[uT],orX[deg],"
    "orY[deg],orZ[deg],press[hPa],rel_alt[m],moving, temp_left[C],temp_right[C],temp_imu[C],"
    "temp_barom[C],\n";

std::string pathFor(long megabytes) {
    const char* tmp = std::getenv("TMPDIR");
    return std::string(tmp ? tmp : "/tmp") + "/bench-replay-" + std::to_string(megabytes) +
           "MB-ORYXSensorsData.csv";
}

// Writes rows until the file reaches the size; returns the row count.
long writeRecording(const std::string& path, long megabytes) {
    std::ofstream out(path, std::ios::binary);
    out << kHeader;
    const long target = megabytes * 1'000'000;
    long bytes = static_cast<long>(std::char_traits<char>::length(kHeader));
    char line[512];
    long row = 0;
    for (; bytes < target; ++row) {
        const double t = 1700000000.0 + static_cast<double>(row) * 0.0025;
        const double a = static_cast<double>(row % 1000) * 0.001;
        const int n = std::snprintf(
            line, sizeof line,
            "%ld,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,%.9f,"
            "%.9f,%d,%.9f,%.9f,%.9f,%.9f,\n",
            row, t, t - 0.001, t - 0.002, a, -9.81 + a, 0.2, a * 3, -a, 0.5, 20.0 + a, -30.0, 41.0,
            a * 10, 80.0 + a, -1.5, 1013.25 + a, 0.1 * a, static_cast<int>(row % 2), 35.0, 36.0,
            40.0, 33.0);
        out.write(line, n);
        bytes += n;
    }
    return row;
}

long residentKiB() {
    std::ifstream status("/proc/self/status");
    std::string key;
    long value = 0;
    while (status >> key) {
        if (key == "VmRSS:") {
            status >> value;
            return value;
        }
        status.ignore(1 << 12, '\n');
    }
    return 0;
}

void BM_OpenRecording(benchmark::State& state) {
    const long megabytes = state.range(0);
    const std::string path = pathFor(megabytes);
    const long rows = writeRecording(path, megabytes);
    const long before = residentKiB();
    long grown = 0;
    for (auto _ : state) {
        recording::Problem problem;
        auto file = recording::RecordingFile::open(path, problem);
        if (!file || file->rowCount() != rows) state.SkipWithError("not opened");
        grown = std::max(grown, residentKiB() - before);
        benchmark::DoNotOptimize(file);
    }
    state.counters["rows"] = static_cast<double>(rows);
    state.counters["rss_growth_KiB"] = static_cast<double>(grown);
    std::remove(path.c_str());
}

void BM_SeekRecording(benchmark::State& state) {
    const long megabytes = state.range(0);
    const std::string path = pathFor(megabytes);
    writeRecording(path, megabytes);
    recording::Problem problem;
    auto file = recording::RecordingFile::open(path, problem);
    if (!file) {
        state.SkipWithError("not opened");
        return;
    }
    const long before = residentKiB();
    std::mt19937 random(7);
    std::uniform_int_distribution<int> anywhere(0, file->rowCount() - 1);
    recording::Row row;
    for (auto _ : state) {
        if (!file->read(anywhere(random), row)) state.SkipWithError("seek failed");
        benchmark::DoNotOptimize(row);
    }
    state.counters["rss_growth_KiB"] = static_cast<double>(residentKiB() - before);
    std::remove(path.c_str());
}

}  // namespace

BENCHMARK(BM_OpenRecording)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SeekRecording)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);
