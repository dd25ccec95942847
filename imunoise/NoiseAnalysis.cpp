#include "NoiseAnalysis.h"

#include <thread>

namespace imunoise {

namespace {

// Reading takes about this share of the time; the curves the rest.
constexpr double kReadingShare = 0.6;

int threadCount(int asked) {
    return asked > 0 ? asked : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

std::string axesWithout(const NoiseReport& report, bool white) {
    std::string names;
    for (const ImuAxis axis : kAxes) {
        const AxisResult& result = report[axis];
        if (!result.present || (white ? result.noise.white : result.noise.walk)) continue;
        names += (names.empty() ? "" : ", ") + std::string(nameOf(axis));
    }
    return names;
}

void noteMissingFits(NoiseReport& report) {
    if (const std::string names = axesWithout(report, true); !names.empty()) {
        report.warnings.push_back("No part of the curve has the slope -1/2 of white noise on " +
                                  names + ": no noise density for them.");
    }
    if (const std::string names = axesWithout(report, false); !names.empty()) {
        report.warnings.push_back("No part of the curve has the slope +1/2 of a random walk on " +
                                  names +
                                  ": no random walk for them. A longer recording reaches it.");
    }
}

}  // namespace

void analyseSeries(ImuSeries& series, NoiseReport& report, const AnalysisOptions& options) {
    report.rateHz = series.rateHz;
    report.durationS = series.durationS;
    report.samples = series.samples;
    report.gaps = series.gaps;
    report.warnings = series.warnings;
    const std::vector<std::size_t> sizes = clusterSizes(series.samples);
    const double period = 1.0 / series.rateHz;
    const int threads = threadCount(options.threads);
    std::vector<double> sums;  // one axis at a time
    int done = 0;
    for (const ImuAxis axis : kAxes) {
        std::vector<float>& values = series.values[indexOf(axis)];
        if (values.empty()) continue;
        AxisResult& result = report.axes[indexOf(axis)];
        runningSums(values, toSi(axis), sums);
        std::vector<float>().swap(values);  // no longer needed: memory for the next axis
        std::size_t finished = 0;
        result.curve = allanDeviation(sums, period, sizes, threads, [&] {
            ++finished;
            const double axisShare = static_cast<double>(finished) / sizes.size();
            return !options.progress ||
                   options.progress(kReadingShare +
                                    (1.0 - kReadingShare) * (done + axisShare) / kAxisCount);
        });
        if (result.curve.size() != sizes.size()) {
            report.cancelled = true;
            return;
        }
        result.present = true;
        result.noise = fitNoise(result.curve);
        ++done;
    }
    noteMissingFits(report);
}

NoiseReport analyseRecording(const std::string& path, const AnalysisOptions& options) {
    NoiseReport report;
    report.path = path;
    LoadResult loaded = loadImuRecording(
        path,
        [&](double share) { return !options.progress || options.progress(kReadingShare * share); },
        options.threads);
    if (!loaded.series) {
        report.refusal = loaded.refusal;
        report.cancelled = loaded.cancelled;
        return report;
    }
    analyseSeries(*loaded.series, report, options);
    return report;
}

}  // namespace imunoise
