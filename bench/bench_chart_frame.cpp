// What one frame of the live chart costs at its heaviest: the last 60 s of a 400 Hz sensor
// (31,200 samples per curve with the 30 % margin the window keeps), three curves, on a canvas
// the size of the main window's chart.
//
// A frame is what the window does on each plot timer tick: hand the plot three new sample
// vectors, replot, and paint. It is timed for DataPlot and, beside it, for a plain QwtPlot whose
// QwtPlotCurves stroke every sample. The side-by-side run also compares the two canvases pixel
// by pixel: the reduced drawing must look like the full one.
//
// FeedSideBySide compares how the window hands the plot its points, frame by frame on growing
// live series: copies of the newest stretch of each series (as it did until now) against curves
// that read slices of the sample store in place (as it does now).
//
// Needs a display: run under xvfb-run. Without one it falls back to Qt's offscreen platform.
#include <benchmark/benchmark.h>
#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>

#include <QApplication>
#include <QImage>
#include <QPixmap>
#include <QVector>
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ctime>
#include <random>

#include "ChartSamples.h"
#include "CssValues.h"
#include "DataPlot.h"
#include "SensorSamples.h"
#include "palette.h"

namespace {

constexpr int kRateHz = 400;
constexpr int kWindowSeconds = 60;
// The window hands the plot 30 % more samples than the time axis shows.
constexpr int kSamplesPerCurve = kWindowSeconds * kRateHz * 13 / 10;
// Frames cycle through a few windows, 15 ms of new samples apart, so that every frame draws
// different data, as the live chart does.
constexpr int kWindows = 8;
constexpr int kSamplesPerTick = 6;
constexpr int kChartWidth = 1000;
constexpr int kChartHeight = 330;

// One window of accelerometer samples: time and the three axes.
struct Window {
    QVector<double> time;
    std::array<QVector<double>, 3> axis;
};

struct Recording {
    std::array<Window, kWindows> windows;
    double valueRange = 0.0;  // largest absolute value, as the sampling loop keeps it
};

// A hand-held camera: gravity mostly on z, slow sway, sensor noise, and a knock every few
// seconds.
double accelerationAt(int axis, double t, std::mt19937& rng) {
    static std::normal_distribution<double> noise(0.0, 0.08);
    const double knock = std::fmod(t, 7.3) < 0.02 ? 3.0 : 0.0;
    switch (axis) {
        case 0:
            return 0.3 * std::sin(2 * M_PI * 0.2 * t) + 1.5 * std::sin(2 * M_PI * 0.05 * t + 1.0) +
                   knock + noise(rng);
        case 1:
            return -0.2 + 1.0 * std::sin(2 * M_PI * 0.13 * t) - knock + noise(rng);
        default:
            return 9.81 + 0.5 * std::sin(2 * M_PI * 0.31 * t) + 0.5 * knock + 1.2 * noise(rng);
    }
}

const Recording& recording() {
    static const Recording rec = [] {
        Recording r;
        const int total = kSamplesPerCurve + kWindows * kSamplesPerTick;
        std::mt19937 rng(20240611);
        QVector<double> time(total);
        std::array<QVector<double>, 3> axis{QVector<double>(total), QVector<double>(total),
                                            QVector<double>(total)};
        for (int i = 0; i < total; ++i) {
            time[i] = 100.0 + double(i) / kRateHz;
            for (int a = 0; a < 3; ++a) {
                axis[a][i] = accelerationAt(a, time[i], rng);
                r.valueRange = std::max(r.valueRange, std::abs(axis[a][i]));
            }
        }
        for (int w = 0; w < kWindows; ++w) {
            r.windows[w].time = time.mid(w * kSamplesPerTick, kSamplesPerCurve);
            for (int a = 0; a < 3; ++a) {
                r.windows[w].axis[a] = axis[a].mid(w * kSamplesPerTick, kSamplesPerCurve);
            }
        }
        return r;
    }();
    return rec;
}

// Axis ranges as the window sets them on each update.
void visibleRanges(const Window& w, double valueRange, double& t0, double& t1, double& v) {
    t1 = w.time.last();
    t0 = t1 - kWindowSeconds;
    v = 1.05 * valueRange;
}

const std::array<DataPlot::DataType, 3> kAccCurves = {DataPlot::ACC_X, DataPlot::ACC_Y,
                                                      DataPlot::ACC_Z};
const std::array<const QString*, 3> kAxisColours = {&clr::xAxis, &clr::yAxis, &clr::zAxis};

QColor axisColour(int axis) { return cssColour(*kAxisColours[axis]); }

class Chart {
public:
    virtual ~Chart() = default;
    virtual QwtPlot& plot() = 0;
    virtual void feed(const Window& w) = 0;

    // One frame: new data, one replot, and the whole widget painted.
    QPixmap frame(const Window& w) {
        feed(w);
        plot().replot();
        return plot().grab();
    }
};

class DataPlotChart : public Chart {
public:
    DataPlotChart() { chart.resize(kChartWidth, kChartHeight); }
    QwtPlot& plot() override { return chart; }
    void feed(const Window& w) override {
        for (int a = 0; a < 3; ++a) {
            chart.updateData(kAccCurves[a], w.time, w.axis[a], false);
        }
        double t0, t1, v;
        visibleRanges(w, recording().valueRange, t0, t1, v);
        chart.setValRange(-v, v, false);
        chart.setTimeRange(t0, t1, false);
    }

private:
    DataPlot chart;
};

// The same picture from stock Qwt parts: background colour, dotted value grid, and one
// QwtPlotCurve per axis with the chart's pens, given every sample.
class PlainChart : public Chart {
public:
    PlainChart() {
        auto* canvas = new QwtPlotCanvas();
        canvas->setFrameStyle(0);
        canvas->setLineWidth(0);
        canvas->setPaintAttribute(QwtPlotCanvas::BackingStore, true);
        chart.setCanvas(canvas);
        chart.setCanvasBackground(clr::bw_soil_clr);
        chart.setAutoReplot(false);
        chart.plotLayout()->setAlignCanvasToScales(true);
        auto* grid = new QwtPlotGrid();
        grid->setPen(QColor(QStringLiteral("#C0C0C0")), 1.0, Qt::DotLine);
        grid->enableX(false);
        grid->attach(&chart);
        for (int a = 0; a < 3; ++a) {
            curves[a] = new QwtPlotCurve();
            curves[a]->setPen(QPen(axisColour(a), 2.0, Qt::SolidLine));
            curves[a]->attach(&chart);
        }
        chart.resize(kChartWidth, kChartHeight);
    }
    QwtPlot& plot() override { return chart; }
    void feed(const Window& w) override {
        for (int a = 0; a < 3; ++a) {
            curves[a]->setSamples(w.time, w.axis[a]);
        }
        double t0, t1, v;
        visibleRanges(w, recording().valueRange, t0, t1, v);
        chart.setAxisScale(QwtPlot::yLeft, -v, v);
        chart.setAxisMaxMinor(QwtPlot::yLeft, 0);
        chart.setAxisScale(QwtPlot::xBottom, t0, t1);
        chart.setAxisMaxMinor(QwtPlot::xBottom, 0);
    }

private:
    QwtPlot chart;
    std::array<QwtPlotCurve*, 3> curves{};
};

void showAndSettle(Chart& chart) {
    chart.plot().show();
    chart.feed(recording().windows[0]);
    chart.plot().replot();
    QApplication::processEvents();
}

// Gives the plain plot the DataPlot's canvas size (their axes differ in width and height).
bool matchCanvasSize(Chart& reference, Chart& other) {
    for (int attempt = 0; attempt < 4; ++attempt) {
        const QSize want = reference.plot().canvas()->size();
        const QSize have = other.plot().canvas()->size();
        if (want == have) {
            return true;
        }
        other.plot().resize(other.plot().size() + (want - have));
        QApplication::processEvents();
    }
    return false;
}

bool sameCanvasMaps(QwtPlot& a, QwtPlot& b) {
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        const QwtScaleMap ma = a.canvasMap(axis), mb = b.canvasMap(axis);
        if (ma.p1() != mb.p1() || ma.p2() != mb.p2() || ma.s1() != mb.s1() || ma.s2() != mb.s2()) {
            return false;
        }
    }
    return true;
}

QImage canvasPart(const QPixmap& frame, const QwtPlot& plot) {
    return frame.toImage().copy(plot.canvas()->geometry()).convertToFormat(QImage::Format_RGB32);
}

double percentDiffering(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull()) {
        return 100.0;
    }
    qint64 differing = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            differing += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
        }
    }
    return 100.0 * double(differing) / double(a.width() * a.height());
}

// CPU seconds of the calling thread: unlike the wall clock, not stretched by other work on a busy
// machine. The frame is drawn on this thread.
double threadCpuSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class ChartType>
void BM_Frame(benchmark::State& state) {
    ChartType chart;
    showAndSettle(chart);
    int w = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(chart.frame(recording().windows[w]));
        w = (w + 1) % kWindows;
    }
    state.counters["points_per_frame"] = 3.0 * kSamplesPerCurve;
}
BENCHMARK_TEMPLATE(BM_Frame, DataPlotChart)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Frame, PlainChart)->Unit(benchmark::kMillisecond);

// Both charts frame by frame in turn, on the same data. The reported time is DataPlot's; the
// counters hold both mean frame times, their ratio, and the largest share of canvas pixels that
// differ between the two pictures of one frame.
void BM_SideBySide(benchmark::State& state) {
    DataPlotChart fast;
    PlainChart plain;
    showAndSettle(fast);
    showAndSettle(plain);
    if (!matchCanvasSize(fast, plain) || !sameCanvasMaps(fast.plot(), plain.plot())) {
        state.SkipWithError("the two canvases do not map the data alike");
        return;
    }
    double fastTotal = 0.0, plainTotal = 0.0;
    int w = 0;
    for (auto _ : state) {
        const Window& window = recording().windows[w];
        w = (w + 1) % kWindows;
        auto start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(fast.frame(window));
        const double fastSeconds = secondsSince(start);
        start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(plain.frame(window));
        plainTotal += secondsSince(start);
        fastTotal += fastSeconds;
        state.SetIterationTime(fastSeconds);
    }
    const auto n = double(state.iterations());
    state.counters["dataplot_ms"] = 1e3 * fastTotal / n;
    state.counters["plain_qwt_ms"] = 1e3 * plainTotal / n;
    state.counters["speedup"] = plainTotal / fastTotal;

    // The worst frame of the cycle.
    double differing = 0.0;
    for (const Window& window : recording().windows) {
        differing =
            std::max(differing, percentDiffering(canvasPart(fast.frame(window), fast.plot()),
                                                 canvasPart(plain.frame(window), plain.plot())));
    }
    state.counters["pixels_differing_pct"] = differing;
}
BENCHMARK(BM_SideBySide)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- Feeding the chart: copies against slices of the store ------------------------------------

// The live accelerometer series as both feeds see them, growing by one plot tick at a time:
// plain vectors, as the window kept them until now, and the sample store.
class LiveSeries {
public:
    LiveSeries() { append(kSamplesPerCurve); }

    void append(int rows) {
        for (int i = 0; i < rows; ++i, ++count) {
            ImuRow row{};
            row.imuTime = 100.0 + double(count) / kRateHz;
            time.append(row.imuTime);
            double* values[3] = {&row.accX, &row.accY, &row.accZ};
            for (int a = 0; a < 3; ++a) {
                *values[a] = accelerationAt(a, row.imuTime, rng);
                axis[a].append(*values[a]);
            }
            store.appendImuRow(row);
        }
    }

    QVector<double> time;
    std::array<QVector<double>, 3> axis;
    SensorSeries store;

private:
    std::int64_t count = 0;
    std::mt19937 rng{20240611};
};

void setRanges(DataPlot& chart, double newest) {
    const double v = 1.05 * recording().valueRange;
    chart.setValRange(-v, v, false);
    chart.setTimeRange(newest - kWindowSeconds, newest, false);
}

// The window until now: the newest stretch of every series copied and handed over.
void feedCopies(DataPlot& chart, const LiveSeries& s) {
    const int start = s.time.size() - kSamplesPerCurve;
    const QVector<double> time = s.time.mid(start);
    for (int a = 0; a < 3; ++a) {
        chart.updateData(kAccCurves[a], time, s.axis[a].mid(start), false);
    }
    setRanges(chart, s.time.last());
}

// The window now: each curve reads a slice of the store.
void feedSlices(DataPlot& chart, const LiveSeries& s) {
    const SensorSeries& store = s.store;
    const RowNumber start = store.endRow() - kSamplesPerCurve;
    const ColumnSlice time = store.imuTime.slice(start);
    const SampleColumn* axes[3] = {&store.accX, &store.accY, &store.accZ};
    for (int a = 0; a < 3; ++a) {
        chart.setCurveData(kAccCurves[a], new ChartSamples(time, axes[a]->slice(start)), false);
    }
    setRanges(chart, store.imuTime.last());
}

QPixmap feedFrame(DataPlot& chart, const LiveSeries& s,
                  void (*feed)(DataPlot&, const LiveSeries&)) {
    feed(chart, s);
    chart.replot();
    return chart.grab();
}

// Both feeds in turn, each on a DataPlot of its own, on the same rows, timed in CPU time of the
// drawing thread. The reported time is that of the slices; the counters hold both mean frame
// times, their ratio, and the largest share of canvas pixels that differ between the two
// pictures of one frame.
void BM_FeedSideBySide(benchmark::State& state) {
    LiveSeries series;
    DataPlot copies, slices;
    for (DataPlot* chart : {&copies, &slices}) {
        chart->resize(kChartWidth, kChartHeight);
        chart->show();
    }
    feedFrame(copies, series, feedCopies);
    feedFrame(slices, series, feedSlices);
    QApplication::processEvents();
    double copiesTotal = 0.0, slicesTotal = 0.0, differing = 0.0;
    int frames = 0;
    // Whichever frame is drawn second costs a few per cent more: the order changes every frame.
    const auto timedFrame = [&series](DataPlot& chart, auto feed, double& total) {
        const double start = threadCpuSeconds();
        QPixmap frame = feedFrame(chart, series, feed);
        total += threadCpuSeconds() - start;
        return frame;
    };
    for (auto _ : state) {
        series.append(kSamplesPerTick);
        const double slicesBefore = slicesTotal;
        QPixmap copied, sliced;
        if (frames % 2 == 0) {
            copied = timedFrame(copies, feedCopies, copiesTotal);
            sliced = timedFrame(slices, feedSlices, slicesTotal);
        } else {
            sliced = timedFrame(slices, feedSlices, slicesTotal);
            copied = timedFrame(copies, feedCopies, copiesTotal);
        }
        state.SetIterationTime(slicesTotal - slicesBefore);
        if (frames++ % 50 == 0) {
            differing = std::max(differing, percentDiffering(canvasPart(copied, copies),
                                                             canvasPart(sliced, slices)));
        }
    }
    const auto n = double(state.iterations());
    state.counters["copies_cpu_ms"] = 1e3 * copiesTotal / n;
    state.counters["slices_cpu_ms"] = 1e3 * slicesTotal / n;
    state.counters["slices_vs_copies"] = slicesTotal / copiesTotal;
    state.counters["pixels_differing_pct"] = differing;
}
BENCHMARK(BM_FeedSideBySide)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
