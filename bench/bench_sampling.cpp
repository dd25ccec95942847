// The live data path, from the simulated camera to the sample series and the chart:
//
//   MemoryOverADay           24 simulated hours at 400 Hz on a free-running virtual clock; each
//                            virtual hour prints the bytes held by the series and the process's
//                            resident size. Both must be flat after the first hour.
//   SamplingThreadCpu        CPU time of the window's camera session's sampling thread
//                            (getSensorsData + SampleIngest on a thread of its own), 400 Hz,
//                            real time. Target: under 2 % of one core.
//   GapFreeImuRate/<Hz>      The same loop at a raised IMU rate, real time; every interval of
//                            the appended imuTime must stay below 1.5 periods. The highest rate
//                            that passes is printed at the end. Target: 20 kHz or more. 100 kHz,
//                            the simulator's ceiling, shows the headroom.
//   TenMinutesSixtySecondChart  A shown main window with the 60 s accelerometer chart on a
//                            virtual clock paced at ORYX_BENCH_PACE times real time (default 10)
//                            until ten virtual minutes are sampled; no interval of imuTime may
//                            reach 1.5 × 2.5 ms.
//   ProcessCpuSixtySecondChart/software_gl, /hardware_gl  A shown main window, 60 s
//                            accelerometer chart and the live orientation view, real time: CPU of
//                            the whole process (user + system, Mesa's rasteriser threads
//                            included), of the GUI thread and of llvmpipe's threads per wall
//                            second after a warm-up; once with the GL settings for a software
//                            renderer, once with the hardware ones forced (16 samples, every
//                            frame drawn). The second reports its CPU as a multiple of the first.
//                            Targets: the GUI thread under 35 % of one core; under Xvfb the whole
//                            process under 50 % with the software settings.
//
// Real-time spans: ORYX_BENCH_SECONDS sets the measured seconds of SamplingThreadCpu (default 20)
// and both the warm-up and the measured seconds of ProcessCpuSixtySecondChart (default 10 each;
// 60 is the figure to report). ORYX_BENCH_RATE_SECONDS sets the seconds per rate (default 3).
//
// The window benchmarks need a display (run under xvfb-run); without one they are skipped.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QPushButton>
#include <QSurfaceFormat>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <bw/Camera.hpp>
#include <bw/sim/Bus.hpp>
#include <bw/sim/Clock.hpp>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "DataPlot.h"
#include "ProcessCpu.h"
#include "RenderSettings.h"
#include "RendererProbe.h"
#include "SampleIngest.h"
#include "SensorSamples.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr double kNominalRateHz = 400.0;
constexpr double kGapFactor = 1.5;  // an interval this many periods long means a lost sample
constexpr double kMiB = 1024.0 * 1024.0;
constexpr int kWindowStartTimeoutMs = 20000;

bool hasDisplay = false;
std::map<int, bool> gapFreeByRate;              // filled by GapFreeImuRate, summarised by main()
std::map<RenderPath, double> processCpuByPath;  // filled by ProcessCpuSixtySecondChart

// ---- Settings and process measurements ----------------------------------------------------------

double envSeconds(const char* name, double fallback) {
    bool ok = false;
    const double value = qEnvironmentVariable(name).toDouble(&ok);
    return ok && value > 0.0 ? value : fallback;
}

double secondsSince(SteadyClock::time_point start) {
    return std::chrono::duration<double>(SteadyClock::now() - start).count();
}

double residentBytes() {
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly)) return 0.0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() < 2 ? 0.0 : fields[1].toDouble() * static_cast<double>(getpagesize());
}

// VmHWM from /proc/self/status, in bytes.
double peakResidentBytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return 0.0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ')[0].toDouble() * 1024;
    }
    return 0.0;
}

// Starts a new peak so that VmHWM describes this benchmark, not the ones before it.
bool resetPeakResident() {
    QFile clearRefs(QStringLiteral("/proc/self/clear_refs"));
    return clearRefs.open(QIODevice::WriteOnly) && clearRefs.write("5") == 1;
}

// CPU seconds of each thread of the process, by thread id, and the thread's name.
struct ThreadCpu {
    QString name;
    double seconds = 0.0;
};

std::map<int, ThreadCpu> threadCpuTimes() {
    std::map<int, ThreadCpu> threads;
    const double tick = static_cast<double>(sysconf(_SC_CLK_TCK));
    for (const QString& tid : QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs)) {
        QFile stat(QStringLiteral("/proc/self/task/%1/stat").arg(tid));
        QFile comm(QStringLiteral("/proc/self/task/%1/comm").arg(tid));
        if (tid.startsWith('.') || !stat.open(QIODevice::ReadOnly) ||
            !comm.open(QIODevice::ReadOnly))
            continue;
        // The name may hold blanks; the fields after its closing parenthesis do not.
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        if (fields.size() < 13) continue;
        // utime and stime are fields 14 and 15 of the line, 12 and 13 after the name.
        threads[tid.toInt()] = {QString::fromUtf8(comm.readAll().trimmed()),
                                (fields[11].toDouble() + fields[12].toDouble()) / tick};
    }
    return threads;
}

// ---- The sampling loop, as the window runs it ---------------------------------------------------

bw::sim::DeviceConfig oneCamera(double imuRateHz = kNominalRateHz) {
    bw::sim::DeviceConfig config;
    config.model = bw::MODEL::ORYX_D;
    config.serial = bw::sim::DeviceConfig::defaultSerial(config.model, 0);
    config.imuRateHz = imuRateHz;
    return config;
}

// The window's camera session on one simulated camera: the thread and the loop the window runs.
class SamplingSession {
public:
    explicit SamplingSession(const bw::sim::DeviceConfig& camera)
        : opened(session.open({static_cast<std::uint32_t>(camera.cameraId), camera.serial,
                               static_cast<std::uint32_t>(camera.model), QString()}) ==
                 bw::SUCCESS) {}

    bool isOpen() const { return opened; }
    const SensorSeries& series() const { return session.series(); }

    // Samples for `seconds` of wall time; returns the sampling thread's CPU seconds.
    double sampleFor(double seconds) {
        session.start();
        const double before = samplingThreadCpu();
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
        const double cpu = samplingThreadCpu() - before;
        session.close();
        return cpu;
    }

    // Samples `hours` of camera time, calling `everyHour` with the series locked after each
    // sampled hour; polls rather than spins so that the sampling thread has the core.
    void sampleHours(int hours, const std::function<void(int, const SensorSeries&)>& everyHour) {
        session.start();
        for (int hour = 1; hour <= hours;) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            if (sampledSeconds() < 3600.0 * hour) continue;
            std::lock_guard<std::mutex> lock(session.seriesMutex());
            everyHour(hour++, session.series());
        }
        session.close();
    }

private:
    double sampledSeconds() const {
        const SensorLevels& levels = session.levels();
        const std::uint64_t first = levels.firstImuTime;
        return first == 0 ? 0.0 : levels.currentTime - static_cast<double>(first) / 1e9;
    }

    static double samplingThreadCpu() {
        for (const auto& [tid, thread] : threadCpuTimes())
            if (thread.name == QLatin1String(LiveCameraSession::kSamplingThreadName))
                return thread.seconds;
        return 0.0;
    }

    std::mutex cameraLayer;
    LiveCameraSession session{cameraLayer};
    bool opened;
};

// Intervals of a time series against a nominal period. The series keep only their newest rows:
// the intervals are those of the kept rows, the row count that of all rows appended.
struct Gaps {
    double rows = 0;
    double widest = 0.0;    // longest interval, s
    int tooLong = 0;        // intervals of kGapFactor periods or more
    long long missing = 0;  // samples those intervals should have held
};

Gaps findGaps(const SampleColumn& time, double period) {
    Gaps gaps;
    gaps.rows = static_cast<double>(time.endRow().value());
    for (RowNumber k = time.firstRow() + 1; k < time.endRow(); ++k) {
        const double interval = time.at(k) - time.at(k - 1);
        gaps.widest = std::max(gaps.widest, interval);
        if (interval >= kGapFactor * period) {
            ++gaps.tooLong;
            gaps.missing += std::llround(interval / period) - 1;
        }
    }
    return gaps;
}

// ---- Memory over a day -------------------------------------------------------------------------

// A simulated day as fast as the loop runs: the virtual clock moves whenever the reader waits.
// Registered first so that it runs on a fresh heap.
void BM_MemoryOverADay(benchmark::State& state) {
    constexpr int kHours = 24;
    bw::sim::VirtualTimeScope virtualTime;
    bw::sim::Clock::setAutoAdvanceLimit(UINT64_MAX);
    const bw::sim::DeviceConfig config = oneCamera();
    bw::sim::Bus::instance().load({config});
    const bool peakReset = resetPeakResident();
    auto sampling = std::make_unique<SamplingSession>(config);
    if (!sampling->isOpen()) return state.SkipWithError("camera did not open");
    const double before = residentBytes();
    double afterFirstHour = 0.0, seriesAfterFirstHour = 0.0, largestSeries = 0.0;
    const auto wallStart = SteadyClock::now();
    for (auto _ : state) {
        sampling->sampleHours(kHours, [&](int hour, const SensorSeries& series) {
            const double resident = residentBytes();
            const double seriesBytes = static_cast<double>(series.bytes());
            std::printf(
                "virtual hour %2d: series %6.2f MiB, resident %7.2f MiB, %lld rows, "
                "%.0f s wall\n",
                hour, seriesBytes / kMiB, resident / kMiB,
                static_cast<long long>(series.endRow().value()), secondsSince(wallStart));
            std::fflush(stdout);
            if (hour == 1) afterFirstHour = resident, seriesAfterFirstHour = seriesBytes;
            largestSeries = std::max(largestSeries, seriesBytes);
        });
    }
    const double resident = residentBytes();
    const SensorSeries& s = sampling->series();
    const Gaps gaps = findGaps(s.imuTime, 1.0 / kNominalRateHz);
    state.counters["rows"] = gaps.rows;
    state.counters["missing_in_kept_rows"] = static_cast<double>(gaps.missing);
    state.counters["rss_added_first_hour_MiB"] = (afterFirstHour - before) / kMiB;
    state.counters["rss_added_after_first_hour_MiB"] = (resident - afterFirstHour) / kMiB;
    state.counters["series_first_hour_MiB"] = seriesAfterFirstHour / kMiB;
    state.counters["series_largest_MiB"] = largestSeries / kMiB;
    state.counters["peak_rss_MiB"] = peakResidentBytes() / kMiB;
    if (!peakReset) state.SetLabel("peak is the whole run's: clear_refs not writable");
}
BENCHMARK(BM_MemoryOverADay)->Iterations(1)->Unit(benchmark::kSecond);

// ---- Sampling thread CPU at 400 Hz --------------------------------------------------------------

void BM_SamplingThreadCpu(benchmark::State& state) {
    bw::sim::Clock::useRealTime();
    const bw::sim::DeviceConfig config = oneCamera();
    bw::sim::Bus::instance().load({config});
    SamplingSession sampling(config);
    if (!sampling.isOpen()) return state.SkipWithError("camera did not open");
    const double seconds = envSeconds("ORYX_BENCH_SECONDS", 20.0);
    double cpu = 0.0;
    for (auto _ : state) cpu = sampling.sampleFor(seconds);
    const Gaps gaps = findGaps(sampling.series().imuTime, 1.0 / kNominalRateHz);
    state.counters["cpu_pct_of_core"] = 100.0 * cpu / seconds;
    state.counters["cpu_us_per_row"] = 1e6 * cpu / std::max(1.0, gaps.rows);
    state.counters["rows_per_s"] = gaps.rows / seconds;
    state.counters["missing"] = static_cast<double>(gaps.missing);
}
BENCHMARK(BM_SamplingThreadCpu)->Iterations(1)->Unit(benchmark::kSecond);

// ---- Highest IMU rate ingested without a gap ----------------------------------------------------

void BM_GapFreeImuRate(benchmark::State& state) {
    const int rate = static_cast<int>(state.range(0));
    bw::sim::Clock::useRealTime();
    const bw::sim::DeviceConfig config = oneCamera(rate);
    bw::sim::Bus::instance().load({config});
    SamplingSession sampling(config);
    if (!sampling.isOpen()) return state.SkipWithError("camera did not open");
    const double seconds = envSeconds("ORYX_BENCH_RATE_SECONDS", 3.0);
    double cpu = 0.0;
    for (auto _ : state) cpu = sampling.sampleFor(seconds);
    const Gaps gaps = findGaps(sampling.series().imuTime, 1.0 / rate);
    gapFreeByRate[rate] = gaps.tooLong == 0 && gaps.rows > 1;
    state.counters["gap_free"] = gapFreeByRate[rate] ? 1.0 : 0.0;
    state.counters["rows_per_s"] = gaps.rows / seconds;
    state.counters["missing"] = static_cast<double>(gaps.missing);
    state.counters["widest_gap_periods"] = gaps.widest * rate;
    state.counters["cpu_pct_of_core"] = 100.0 * cpu / seconds;
}
BENCHMARK(BM_GapFreeImuRate)
    ->Arg(400)
    ->Arg(2000)
    ->Arg(5000)
    ->Arg(10000)
    ->Arg(20000)
    ->Arg(40000)
    ->Arg(100000)  // the simulator's ceiling: shows the headroom above the target
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

// ---- Window helpers -----------------------------------------------------------------------------

// Runs the event loop until done() holds or timeoutMs pass; polls rather than spins so that the
// process's CPU time stays the window's own.
bool runEventsUntil(const std::function<bool()>& done, int timeoutMs) {
    QEventLoop loop;
    QElapsedTimer elapsed;
    elapsed.start();
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done() || elapsed.elapsed() >= timeoutMs) loop.quit();
    });
    poll.start(50);
    if (!done()) loop.exec();
    return done();
}

void runEventsFor(double seconds) {
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000.0), &loop, &QEventLoop::quit);
    loop.exec();
}

// Counts the paints of the chart's canvas: each is one redraw that updatePlot asked for.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* canvas) { canvas->installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;
        return false;
    }
};

// A shown main window sampling one camera, with the 60 s accelerometer chart.
std::unique_ptr<MainWindow> openWindowWithMinuteChart() {
    auto window = std::make_unique<MainWindow>();
    window->resize(1400, 900);
    window->show();
    MainWindow& w = *window;
    if (!runEventsUntil([&] { return w.input() != nullptr && w.isSampling(); },
                        kWindowStartTimeoutMs))
        return nullptr;
    QComboBox* range = w.form()->comboBox_time_range;
    range->setCurrentIndex(range->findText(QStringLiteral("Last 60 sec")));
    if (!w.form()->pushButton_accel->isChecked()) w.form()->pushButton_accel->click();
    if (range->currentText() != QLatin1String("Last 60 sec") ||
        w.shownSensor() != QLatin1String("Accelerometer"))
        return nullptr;
    return window;
}

double sampledSeconds(const MainWindow& w) {
    const std::uint64_t first = w.sampleLevels().firstImuTime.load();
    return first == 0 ? 0.0
                      : w.sampleLevels().currentTime.load() - static_cast<double>(first) / 1e9;
}

// Lets virtual time run at pace times the wall clock: readers may advance it up to the limit.
class VirtualPace : public QObject {
public:
    explicit VirtualPace(double pace) : pace_(pace), startNs_(bw::sim::Clock::nowNs()) {
        wall_.start();
        connect(&tick_, &QTimer::timeout, this, [this] {
            const double ahead = pace_ * static_cast<double>(wall_.nsecsElapsed());
            bw::sim::Clock::setAutoAdvanceLimit(startNs_ + static_cast<std::uint64_t>(ahead));
        });
        tick_.start(10);
    }

private:
    double pace_;
    std::uint64_t startNs_;
    QElapsedTimer wall_;
    QTimer tick_;
};

// ---- Ten virtual minutes with the 60 s chart ----------------------------------------------------

void BM_TenMinutesSixtySecondChart(benchmark::State& state) {
    if (!hasDisplay) return state.SkipWithError("needs a display: run under xvfb-run");
    const double pace = envSeconds("ORYX_BENCH_PACE", 10.0);
    constexpr double kVirtualSeconds = 600.0;
    bw::sim::VirtualTimeScope virtualTime;
    bw::sim::Bus::instance().load({oneCamera()});
    VirtualPace pacer(pace);
    std::unique_ptr<MainWindow> window = openWindowWithMinuteChart();
    if (!window) return state.SkipWithError("the window did not start sampling the chart");
    PaintCounter paints(window->form()->widget_chart->canvas());
    const auto wallStart = SteadyClock::now();
    bool reached = false;
    for (auto _ : state)
        reached = runEventsUntil([&] { return sampledSeconds(*window) >= kVirtualSeconds; },
                                 static_cast<int>(4000.0 * kVirtualSeconds / pace));
    const double wall = secondsSince(wallStart);
    Gaps gaps;
    double sampled = 0.0;
    {
        std::lock_guard<std::mutex> lock(window->sampleMutex());
        const SampleColumn& time = window->sampleSeries().imuTime;
        gaps = findGaps(time, 1.0 / kNominalRateHz);
        sampled = sampledSeconds(*window);
    }
    const int periodMs = window->chartPeriodMs();
    window.reset();
    if (!reached) return state.SkipWithError("ten virtual minutes were not reached in time");
    state.counters["rows"] = gaps.rows;
    state.counters["sampled_s"] = sampled;
    state.counters["missing"] = static_cast<double>(gaps.missing);
    state.counters["widest_interval_ms"] = gaps.widest * 1e3;
    state.counters["pace_achieved"] = kVirtualSeconds / wall;
    state.counters["redraws_per_s"] = paints.paints / wall;
    state.counters["chart_period_ms"] = periodMs;
    if (gaps.tooLong != 0) state.SkipWithError("samples were lost: imuTime has gaps");
}
BENCHMARK(BM_TenMinutesSixtySecondChart)->Iterations(1)->Unit(benchmark::kSecond);

// ---- Whole-process CPU with the 60 s chart, real time -------------------------------------------

// CPU seconds, over a span, of the threads whose name starts with `prefix`: the sampling thread,
// Mesa's llvmpipe rasteriser threads (llvmpipe-0, llvmpipe-1, ...).
double threadsCpu(const std::map<int, ThreadCpu>& from, const std::map<int, ThreadCpu>& to,
                  const QString& prefix) {
    double cpu = 0.0;
    for (const auto& [tid, thread] : to) {
        if (!thread.name.startsWith(prefix)) continue;
        cpu += thread.seconds - (from.count(tid) ? from.at(tid).seconds : 0.0);
    }
    return cpu;
}

void BM_ProcessCpuSixtySecondChart(benchmark::State& state, RenderPath path) {
    if (!hasDisplay) return state.SkipWithError("needs a display: run under xvfb-run");
    const double seconds = envSeconds("ORYX_BENCH_SECONDS", 10.0);
    bw::sim::Clock::useRealTime();
    bw::sim::Bus::instance().load({oneCamera()});
    installRenderSettings(RenderSettings::forPath(path));
    std::unique_ptr<MainWindow> window = openWindowWithMinuteChart();
    if (!window) return state.SkipWithError("the window did not start sampling the chart");
    runEventsFor(seconds);  // warm-up: the chart fills its window
    PaintCounter paints(window->form()->widget_chart->canvas());
    PaintCounter viewFrames(window->form()->widget_3d_view);
    const std::map<int, ThreadCpu> threadsFrom = threadCpuTimes();
    const double sampledFrom = sampledSeconds(*window);
    const double cpuFrom = processCpuSeconds();
    const auto wallStart = SteadyClock::now();
    for (auto _ : state) runEventsFor(seconds);
    const double cpu = processCpuSeconds() - cpuFrom;
    const double wall = secondsSince(wallStart);
    const std::map<int, ThreadCpu> threadsTo = threadCpuTimes();
    const double guiCpu = threadsTo.at(getpid()).seconds - threadsFrom.at(getpid()).seconds;
    processCpuByPath[path] = 100.0 * cpu / wall;
    state.counters["process_cpu_pct_of_core"] = processCpuByPath[path];
    state.counters["gui_thread_cpu_pct"] = 100.0 * guiCpu / wall;
    state.counters["llvmpipe_threads_cpu_pct"] =
        100.0 * threadsCpu(threadsFrom, threadsTo, QStringLiteral("llvmpipe")) / wall;
    state.counters["sampling_thread_cpu_pct"] =
        100.0 * threadsCpu(threadsFrom, threadsTo, LiveCameraSession::kSamplingThreadName) / wall;
    state.counters["sampled_s_per_s"] = (sampledSeconds(*window) - sampledFrom) / wall;
    state.counters["redraws_per_s"] = paints.paints / wall;
    state.counters["view3d_frames_per_s"] = viewFrames.paints / wall;
    state.counters["chart_period_ms"] = window->chartPeriodMs();
    const auto software = processCpuByPath.find(RenderPath::Software);
    if (path == RenderPath::Hardware && software != processCpuByPath.end() && software->second > 0)
        state.counters["process_cpu_x_software_gl"] = processCpuByPath[path] / software->second;
    window.reset();
}
// Software first: the hardware run then reports its CPU as a multiple of it.
BENCHMARK_CAPTURE(BM_ProcessCpuSixtySecondChart, software_gl, RenderPath::Software)
    ->Iterations(1)
    ->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(BM_ProcessCpuSixtySecondChart, hardware_gl, RenderPath::Hardware)
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

void printHighestGapFreeRate() {
    if (gapFreeByRate.empty()) return;
    int highest = 0;
    for (const auto& [rate, gapFree] : gapFreeByRate) {
        if (!gapFree) break;  // rates ascend: the first failure ends the run of passes
        highest = rate;
    }
    std::printf("Highest IMU rate ingested without a gap: %d Hz (target 20000 Hz)\n", highest);
}

void printProcessCpuRatio() {
    const auto software = processCpuByPath.find(RenderPath::Software);
    const auto hardware = processCpuByPath.find(RenderPath::Hardware);
    if (software == processCpuByPath.end() || hardware == processCpuByPath.end()) return;
    std::printf(
        "Whole-process CPU, 60 s chart and 3D view: %.1f %% of a core with the software GL "
        "settings, %.1f %% with the hardware ones (%.2f times as much)\n",
        software->second, hardware->second, hardware->second / std::max(software->second, 1e-9));
}

}  // namespace

int main(int argc, char** argv) {
    hasDisplay = !qEnvironmentVariableIsEmpty("DISPLAY");
    if (!hasDisplay) qputenv("QT_QPA_PLATFORM", "offscreen");
    // As the application's own main() does: the chart must cost what it costs there.
    qputenv("QT_NO_FT_CACHE", "1");
    QSurfaceFormat format;
    format.setSamples(16);
    QSurfaceFormat::setDefaultFormat(format);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QApplication app(argc, argv);
    setUpGlRendering();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printHighestGapFreeRate();
    printProcessCpuRatio();
    return 0;
}
