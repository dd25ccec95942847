// Throughput of CSV recording: one row per IMU sample at up to 400 Hz, written from the
// sampling thread while it holds the data lock. Each row is formatted, handed to the system in
// one write and flushed; the formatting alone is measured too, to see where the time goes.
#include <benchmark/benchmark.h>

#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <ctime>

#include "csvwriter.h"

namespace {

double threadCpuSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

// Every group on; the options are read from a throw-away settings folder, never the user's.
RecOptions allGroups(const QTemporaryDir& settingsDir) {
    QStandardPaths::setTestModeEnabled(true);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir.path());
    RecOptions options;
    options.accelerometer = options.gyroscope = options.magnetometer = options.orientation =
        options.barometer = options.temperatures = options.movement = true;
    return options;
}

CsvRow sampleRow(int i) {
    CsvRow row;
    row.index = i;
    row.imuTime = 1234.5678 + i * 0.0025;
    row.magTime = 1234.56 + i * 0.01;
    row.baroTime = 1234.5 + i * 0.04;
    row.accX = 0.0123 * i;
    row.accY = -9.80665;
    row.accZ = 0.25;
    row.gyroX = -1.5;
    row.gyroY = 0.03125;
    row.gyroZ = 179.9;
    row.magX = 23.4;
    row.magY = -4.06;
    row.magZ = 41.0;
    row.orientX = -12.5;
    row.orientY = 3.0;
    row.orientZ = 87.25;
    row.pressure = 1013.25;
    row.altitude = -1.75;
    row.movingState = i % 2;
    row.tempLeft = 36.5;
    row.tempRight = 37.0;
    row.tempImu = 41.25;
    row.tempBarometer = 38.125;
    return row;
}

void reportPerRow(benchmark::State& state, double cpuSeconds) {
    const auto rows = static_cast<double>(state.iterations());
    state.counters["rows_per_s"] = benchmark::Counter(rows, benchmark::Counter::kIsRate);
    state.counters["cpu_us_per_row"] = 1e6 * cpuSeconds / rows;
}

void BM_WriteRowAllGroups(benchmark::State& state) {
    QTemporaryDir dir;
    const RecOptions options = allGroups(dir);
    CsvWriter writer;
    if (!writer.open(dir.filePath("bench.csv"), options)) {
        state.SkipWithError("cannot open the file");
        return;
    }
    int i = 0;
    const double cpuStart = threadCpuSeconds();
    for (auto _ : state) {
        benchmark::DoNotOptimize(writer.writeRow(sampleRow(i++)));
    }
    reportPerRow(state, threadCpuSeconds() - cpuStart);
    writer.close();
}

void BM_FormatRowAllGroups(benchmark::State& state) {
    QTemporaryDir dir;
    const RecOptions options = allGroups(dir);
    std::string line;
    int i = 0;
    const double cpuStart = threadCpuSeconds();
    for (auto _ : state) {
        line.clear();
        appendCsvRow(line, options, sampleRow(i++));
        benchmark::DoNotOptimize(line.data());
    }
    reportPerRow(state, threadCpuSeconds() - cpuStart);
}

}  // namespace

BENCHMARK(BM_WriteRowAllGroups);
BENCHMARK(BM_FormatRowAllGroups);
